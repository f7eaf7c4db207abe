/* qor_lang2.h from C: compiled as C11 with -pedantic, it must declare every export in a form a C
 * host can call. Each export is called once, in a scenario that needs no files. */
#include "qor_lang2.h"

#include <stddef.h>
#include <stdio.h>

#if defined(_WIN32)
#define T(s) L##s
#else
#define T(s) u##s
#endif

static int failures = 0;
#define CHECK(ok) ((ok) ? (void)0 : (void)(fprintf(stderr, "FAILED: %s\n", #ok), ++failures))

/* Compares a returned string with ASCII text, then frees it. */
static int takeEquals(QOR_LANG2_CHAR* text, const char* expected)
{
    size_t i = 0;
    while (text && expected[i] && text[i] == (QOR_LANG2_CHAR)expected[i])
        ++i;
    int equal = text && !expected[i] && !text[i];
    QOR_LANG2_freeWideString(text);
    return equal;
}

int main(void)
{
    QOR_LANG2_CHAR* (*const accessors[])(QOR_LANG2_FILE_HANDLE) = {
        QOR_LANG2_FILE_getAppID,         QOR_LANG2_FILE_getAuthor,         QOR_LANG2_FILE_getComment,
        QOR_LANG2_FILE_getEnglishName,   QOR_LANG2_FILE_getEnglishSubName, QOR_LANG2_FILE_getNativeName,
        QOR_LANG2_FILE_getNativeSubName, QOR_LANG2_FILE_getLanguageID};
    QOR_LANG2_FILE_HANDLE file = QOR_LANG2_getLanguageFile(T("chost"), 0);
    size_t i;

    CHECK(file == NULL);
    QOR_LANG2_freeQorLangFile(file);
    CHECK(QOR_LANG2_add(T("/qor-none"), NULL, T("chost")) == 0);
    CHECK(QOR_LANG2_addEx(T("file:///qor-none/"), T("chost")) == 0);
    CHECK(QOR_LANG2_reload() == 0);
    CHECK(QOR_LANG2_getLanguageCount(T("chost")) == 0);
    CHECK(QOR_LANG2_getLanguage(T("chost"), 0) == NULL);
    CHECK(QOR_LANG2_setCurrentLanguage(T("en-US")) == 0);
    CHECK(takeEquals(QOR_LANG2_getCurrentLanguage(), "en-US"));
    CHECK(takeEquals(QOR_LANG2_getLocalString(T("k"), T("OK")), "OK"));
    CHECK(QOR_LANG2_findLocalizedFile(T("file:///qor-none/"), T("h_"), T(""), T("")) == NULL);
    for (i = 0; i < sizeof accessors / sizeof accessors[0]; ++i)
        CHECK(accessors[i](NULL) == NULL);
    return failures ? 1 : 0;
}
