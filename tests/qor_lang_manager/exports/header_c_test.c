/* qor_lang2.h from C: compiled as C11 with -pedantic, it must declare every export in a form a C
 * host can call. Each export is called once, in a scenario that needs no files. */
#include "qor_lang2.h"

#include <stddef.h>
#include <stdio.h>

static int failures = 0;

static void check(int ok, const char* what)
{
    if (!ok) {
        fprintf(stderr, "FAILED: %s\n", what);
        ++failures;
    }
}

/* Compares a returned string with ASCII text, then frees it. */
static int takeEquals(QOR_LANG2_CHAR* text, const char* expected)
{
    size_t i = 0;
    int equal = text != NULL;
    for (; equal && expected[i]; ++i)
        equal = text[i] == (QOR_LANG2_CHAR)expected[i];
    equal = equal && text[i] == 0;
    QOR_LANG2_freeWideString(text);
    return equal;
}

int main(void)
{
    static const QOR_LANG2_CHAR app[] = {'c', 'h', 'o', 's', 't', 0};
    static const QOR_LANG2_CHAR folder[] = {'/', 'q', 'o', 'r', '-', 'n', 'o', 'n', 'e', 0};
    static const QOR_LANG2_CHAR folderUri[] = {'f', 'i', 'l', 'e', ':', '/', '/', '/', 'q',
                                               'o', 'r', '-', 'n', 'o', 'n', 'e', '/', 0};
    static const QOR_LANG2_CHAR tag[] = {'e', 'n', '-', 'U', 'S', 0};
    static const QOR_LANG2_CHAR key[] = {'k', 0};
    static const QOR_LANG2_CHAR fallback[] = {'O', 'K', 0};
    static const QOR_LANG2_CHAR prefix[] = {'h', '_', 0};
    static const QOR_LANG2_CHAR empty[] = {0};
    QOR_LANG2_CHAR* (*const accessors[])(QOR_LANG2_FILE_HANDLE) = {
        QOR_LANG2_FILE_getAppID,         QOR_LANG2_FILE_getAuthor,         QOR_LANG2_FILE_getComment,
        QOR_LANG2_FILE_getEnglishName,   QOR_LANG2_FILE_getEnglishSubName, QOR_LANG2_FILE_getNativeName,
        QOR_LANG2_FILE_getNativeSubName, QOR_LANG2_FILE_getLanguageID};
    QOR_LANG2_FILE_HANDLE file;
    size_t i;

    check(QOR_LANG2_add(folder, NULL, app) == 0, "add of a missing folder");
    check(QOR_LANG2_addEx(folderUri, app) == 0, "addEx");
    check(QOR_LANG2_reload() == 0, "reload");
    check(QOR_LANG2_getLanguageCount(app) == 0, "getLanguageCount");
    check(QOR_LANG2_getLanguage(app, 0) == NULL, "getLanguage");
    file = QOR_LANG2_getLanguageFile(app, 0);
    check(file == NULL, "getLanguageFile");
    QOR_LANG2_freeQorLangFile(file);

    check(QOR_LANG2_setCurrentLanguage(tag) == 0, "setCurrentLanguage");
    check(takeEquals(QOR_LANG2_getCurrentLanguage(), "en-US"), "getCurrentLanguage");
    check(takeEquals(QOR_LANG2_getLocalString(key, fallback), "OK"), "getLocalString");
    check(QOR_LANG2_findLocalizedFile(folderUri, prefix, empty, empty) == NULL, "findLocalizedFile");

    for (i = 0; i < sizeof accessors / sizeof accessors[0]; ++i)
        check(accessors[i](NULL) == NULL, "a QOR_LANG2_FILE_ accessor with a null handle");

    return failures ? 1 : 0;
}
