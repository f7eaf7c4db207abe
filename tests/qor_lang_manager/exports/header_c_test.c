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
    QOR_LANG2_CHAR* (*const accessors[])(QOR_LANG2_FILE_HANDLE) = {
        QOR_LANG2_FILE_getAppID,         QOR_LANG2_FILE_getAuthor,         QOR_LANG2_FILE_getComment,
        QOR_LANG2_FILE_getEnglishName,   QOR_LANG2_FILE_getEnglishSubName, QOR_LANG2_FILE_getNativeName,
        QOR_LANG2_FILE_getNativeSubName, QOR_LANG2_FILE_getLanguageID};
    QOR_LANG2_FILE_HANDLE file = QOR_LANG2_getLanguageFile(T("chost"), 0);
    size_t i;

    check(file == NULL, "getLanguageFile");
    QOR_LANG2_freeQorLangFile(file);
    check(QOR_LANG2_add(T("/qor-none"), NULL, T("chost")) == 0, "add of a missing folder");
    check(QOR_LANG2_addEx(T("file:///qor-none/"), T("chost")) == 0, "addEx");
    check(QOR_LANG2_reload() == 0, "reload");
    check(QOR_LANG2_getLanguageCount(T("chost")) == 0, "getLanguageCount");
    check(QOR_LANG2_getLanguage(T("chost"), 0) == NULL, "getLanguage");
    check(QOR_LANG2_setCurrentLanguage(T("en-US")) == 0, "setCurrentLanguage");
    check(takeEquals(QOR_LANG2_getCurrentLanguage(), "en-US"), "getCurrentLanguage");
    check(takeEquals(QOR_LANG2_getLocalString(T("k"), T("OK")), "OK"), "getLocalString");
    check(QOR_LANG2_findLocalizedFile(T("file:///qor-none/"), T("h_"), T(""), T("")) == NULL, "findLocalizedFile");
    for (i = 0; i < sizeof accessors / sizeof accessors[0]; ++i)
        check(accessors[i](NULL) == NULL, "a QOR_LANG2_FILE_ accessor with a null handle");
    return failures ? 1 : 0;
}
