/* A plain C application built with `pkg-config --cflags --libs qor_lang2` against an installed
 * qor_lang2. argv[1]: a folder with consumer-de-DE.qorlang, compiled by the installed qorlang.
 * Exit status 0 when every answer is right. */
#include <qor_lang2.h>

#include <stdio.h>
#include <string.h>

#if defined(_WIN32)
#define TEXT16(s) L##s
#else
#define TEXT16(s) u##s
#endif

static int failures = 0;

static void expect(int ok, const char* what)
{
    if (!ok && ++failures)
        fprintf(stderr, "FAILED: %s\n", what);
}

/* Whether a returned string holds the expected UTF-16 text; gives it back either way. */
static int takeEquals(QOR_LANG2_CHAR* text, const QOR_LANG2_CHAR* expected)
{
    size_t i = 0;
    while (text && expected[i] && text[i] == expected[i])
        ++i;
    const int equal = text && !expected[i] && !text[i];
    QOR_LANG2_freeWideString(text);
    return equal;
}

int main(int argc, char** argv)
{
    QOR_LANG2_CHAR folder[4096];
    size_t i, length = argc == 2 ? strlen(argv[1]) : sizeof folder;
    if (length >= sizeof folder / sizeof folder[0]) {
        fprintf(stderr, "usage: pkgconfig_consumer <language folder (ASCII path)>\n");
        return 2;
    }
    for (i = 0; i <= length; ++i)
        folder[i] = (unsigned char)argv[1][i];
    expect(QOR_LANG2_add(folder, NULL, TEXT16("consumer")) == 0, "add");
    expect(QOR_LANG2_getLanguageCount(TEXT16("consumer")) == 1, "one language");
    expect(QOR_LANG2_setCurrentLanguage(TEXT16("de-DE")) == 0, "set de-DE");
    expect(takeEquals(QOR_LANG2_getLocalString(TEXT16("greeting"), TEXT16("Hello")), TEXT16("Grüß Gott")), "greeting");
    expect(takeEquals(QOR_LANG2_getLocalString(TEXT16("missing"), TEXT16("Default")), TEXT16("Default")), "default");
    puts(failures ? "pkg-config consumer: FAILED" : "pkg-config consumer: ok");
    return failures ? 1 : 0;
}
