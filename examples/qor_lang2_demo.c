/*
 * qor_lang2_demo: a small host program in plain C that uses only the public header and the
 * shared library. It registers a folder of language files, lists the languages, switches through
 * them printing a few localised strings, and finds a localised help file.
 *
 *   qor_lang2_demo <language folder> <help folder>
 */
#if !defined(_WIN32)
#define _XOPEN_SOURCE 700 /* realpath */
#endif

#include "qor_lang2.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#if defined(_WIN32)
#include <windows.h>
#define TEXT16(s) L##s
#else
#define TEXT16(s) u##s
#endif

#define APP_ID TEXT16("qor_demo")

/* Prints UTF-16 text as UTF-8. */
static void print16(const QOR_LANG2_CHAR* text)
{
    size_t i;
    if (!text) {
        fputs("(null)", stdout);
        return;
    }
    for (i = 0; text[i]; ++i) {
        unsigned long cp = (unsigned long)(unsigned short)text[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + ((unsigned long)text[i + 1] - 0xDC00);
            ++i;
        }
        if (cp < 0x80) {
            putchar((int)cp);
        } else if (cp < 0x800) {
            putchar((int)(0xC0 | (cp >> 6)));
            putchar((int)(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            putchar((int)(0xE0 | (cp >> 12)));
            putchar((int)(0x80 | ((cp >> 6) & 0x3F)));
            putchar((int)(0x80 | (cp & 0x3F)));
        } else {
            putchar((int)(0xF0 | (cp >> 18)));
            putchar((int)(0x80 | ((cp >> 12) & 0x3F)));
            putchar((int)(0x80 | ((cp >> 6) & 0x3F)));
            putchar((int)(0x80 | (cp & 0x3F)));
        }
    }
}

/* Prints a string the library returned, then gives it back. */
static void printOwned(QOR_LANG2_CHAR* text)
{
    print16(text);
    QOR_LANG2_freeWideString(text);
}

static size_t length16(const QOR_LANG2_CHAR* text)
{
    size_t n = 0;
    while (text[n])
        ++n;
    return n;
}

/* An absolute path as a "file" URI text: the folder argument of QOR_LANG2_findLocalizedFile. */
static QOR_LANG2_CHAR* fileUri(const QOR_LANG2_CHAR* absolutePath)
{
    static const char hex[] = "0123456789ABCDEF";
    size_t n = length16(absolutePath), i, out = 0;
    QOR_LANG2_CHAR* uri = (QOR_LANG2_CHAR*)malloc((n * 3 + 16) * sizeof(QOR_LANG2_CHAR));
    const char* prefix = absolutePath[0] == '/' ? "file://" : "file:///";
    if (!uri)
        return NULL;
    for (i = 0; prefix[i]; ++i)
        uri[out++] = (QOR_LANG2_CHAR)prefix[i];
    for (i = 0; i < n; ++i) {
        QOR_LANG2_CHAR c = absolutePath[i] == '\\' ? (QOR_LANG2_CHAR)'/' : absolutePath[i];
        /* ASCII characters a URI path may not hold are escaped; the library escapes the rest. */
        if (c == ' ' || c == '%' || c == '#' || c == '?') {
            uri[out++] = '%';
            uri[out++] = (QOR_LANG2_CHAR)hex[(c >> 4) & 0xF];
            uri[out++] = (QOR_LANG2_CHAR)hex[c & 0xF];
        } else {
            uri[out++] = c;
        }
    }
    uri[out++] = '/';
    uri[out] = 0;
    return uri;
}

/* The command-line argument as an absolute UTF-16 path (caller frees). */
#if defined(_WIN32)
static QOR_LANG2_CHAR* absolutePath(const wchar_t* arg)
{
    return _wfullpath(NULL, arg, 0);
}
#else
static QOR_LANG2_CHAR* absolutePath(const char* arg)
{
    char* resolved = realpath(arg, NULL);
    size_t i = 0, out = 0;
    QOR_LANG2_CHAR* path;
    if (!resolved)
        return NULL;
    path = (QOR_LANG2_CHAR*)malloc((strlen(resolved) + 1) * sizeof(QOR_LANG2_CHAR));
    if (!path) {
        free(resolved);
        return NULL;
    }
    /* UTF-8 to UTF-16. */
    while (resolved[i]) {
        unsigned char b = (unsigned char)resolved[i];
        unsigned long cp;
        int extra = b < 0x80 ? 0 : b < 0xE0 ? 1 : b < 0xF0 ? 2 : 3;
        cp = extra == 0 ? b : extra == 1 ? (b & 0x1Fu) : extra == 2 ? (b & 0x0Fu) : (b & 0x07u);
        for (++i; extra > 0 && resolved[i]; --extra, ++i)
            cp = (cp << 6) | ((unsigned char)resolved[i] & 0x3Fu);
        if (cp >= 0x10000) {
            path[out++] = (QOR_LANG2_CHAR)(0xD800 + ((cp - 0x10000) >> 10));
            path[out++] = (QOR_LANG2_CHAR)(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            path[out++] = (QOR_LANG2_CHAR)cp;
        }
    }
    path[out] = 0;
    free(resolved);
    return path;
}
#endif

static void showString(const QOR_LANG2_CHAR* key, const QOR_LANG2_CHAR* fallback)
{
    fputs("  ", stdout);
    print16(key);
    fputs(" = ", stdout);
    printOwned(QOR_LANG2_getLocalString(key, fallback));
    putchar('\n');
}

static void findHelp(const QOR_LANG2_CHAR* helpUri)
{
    QOR_LANG2_CHAR* help = QOR_LANG2_findLocalizedFile(helpUri, TEXT16("help_"), TEXT16(""), TEXT16(".txt"));
    fputs("  help file: ", stdout);
    if (help) {
        /* Only the file name: the folder differs from machine to machine. */
        size_t n = length16(help);
        while (n > 0 && help[n - 1] != '/' && help[n - 1] != '\\')
            --n;
        print16(help + n);
        QOR_LANG2_freeWideString(help);
    } else {
        fputs("none", stdout);
    }
    putchar('\n');
}

#if defined(_WIN32)
int wmain(int argc, wchar_t** argv)
#else
int main(int argc, char** argv)
#endif
{
    static const QOR_LANG2_CHAR* const tags[] = {TEXT16("en-US"), TEXT16("de-DE"), TEXT16("fr-FR"), TEXT16("ja-JP")};
    QOR_LANG2_CHAR *langFolder, *helpFolder, *helpUri;
    int32_t count, i;
    size_t t;

#if defined(_WIN32)
    SetConsoleOutputCP(CP_UTF8);
#endif
    if (argc != 3) {
        fputs("usage: qor_lang2_demo <language folder> <help folder>\n", stderr);
        return 2;
    }
    langFolder = absolutePath(argv[1]);
    helpFolder = absolutePath(argv[2]);
    if (!langFolder || !helpFolder) {
        fputs("qor_lang2_demo: cannot find the folders\n", stderr);
        return 1;
    }
    helpUri = fileUri(helpFolder);

    if (QOR_LANG2_add(langFolder, NULL, APP_ID) != 0) {
        fputs("qor_lang2_demo: the language folder cannot be registered\n", stderr);
        return 1;
    }

    fputs("Current language before any choice: \"", stdout);
    printOwned(QOR_LANG2_getCurrentLanguage());
    puts("\"");

    count = QOR_LANG2_getLanguageCount(APP_ID);
    printf("Languages found: %d\n", (int)count);
    for (i = 0; i < count; ++i) {
        QOR_LANG2_FILE_HANDLE file = QOR_LANG2_getLanguageFile(APP_ID, i);
        fputs("  ", stdout);
        printOwned(QOR_LANG2_FILE_getLanguageID(file));
        fputs(": ", stdout);
        printOwned(QOR_LANG2_FILE_getNativeName(file));
        fputs(" (", stdout);
        printOwned(QOR_LANG2_FILE_getNativeSubName(file));
        fputs(") - ", stdout);
        printOwned(QOR_LANG2_FILE_getEnglishName(file));
        fputs(" (", stdout);
        printOwned(QOR_LANG2_FILE_getEnglishSubName(file));
        fputs("), by ", stdout);
        printOwned(QOR_LANG2_FILE_getAuthor(file));
        putchar('\n');
        QOR_LANG2_freeQorLangFile(file);
    }

    for (t = 0; t < sizeof tags / sizeof tags[0]; ++t) {
        int32_t result = QOR_LANG2_setCurrentLanguage(tags[t]);
        fputs("\nLanguage ", stdout);
        print16(tags[t]);
        printf(" (set: %d, current: ", (int)result);
        printOwned(QOR_LANG2_getCurrentLanguage());
        puts(")");
        showString(TEXT16("app.title"), TEXT16("Sample Editor"));
        showString(TEXT16("menu.file"), TEXT16("File"));
        showString(TEXT16("menu.open"), TEXT16("Open..."));
        showString(TEXT16("status.saved"), TEXT16("All changes saved"));
        showString(TEXT16("demo.notTranslated"), TEXT16("(default text: no language defines this key)"));
        findHelp(helpUri);
    }

    printf("\nA bare language code is not a tag: setCurrentLanguage(\"de\") = %d\n",
           (int)QOR_LANG2_setCurrentLanguage(TEXT16("de")));

    free(helpUri);
    free(langFolder);
    free(helpFolder);
    return 0;
}
