// The functions of qor_lang2.h that the wrapper's tests reach, answering from a fixed table:
// application "app" has two languages, de-DE and uk-UA; "greeting" is the one key with a text.
#include "FakeLibrary.h"

#include "qor_lang2.h"

#include <algorithm>
#include <initializer_list>

namespace fake_lib {

Books& books()
{
    static Books instance;
    return instance;
}

namespace {

std::u16string text(const QOR_LANG2_CHAR* argument)
{
    return argument ? std::u16string(argument, argument + std::char_traits<QOR_LANG2_CHAR>::length(argument)) : u"";
}
void record(std::initializer_list<const QOR_LANG2_CHAR*> arguments)
{
    books().lastArguments.clear();
    for (const QOR_LANG2_CHAR* argument : arguments)
        books().lastArguments.push_back(text(argument));
}
QOR_LANG2_CHAR* give(std::u16string_view value)
{
    auto* buffer = new QOR_LANG2_CHAR[value.size() + 1];
    *std::copy(value.begin(), value.end(), buffer) = 0;
    books().liveStrings.insert(buffer);
    ++books().stringsReturned;
    return buffer;
}
bool knownLanguage(const QOR_LANG2_CHAR* appId, int32_t index)
{
    return text(appId) == u"app" && index >= 0 && index < 2;
}

const char16_t* const kTags[] = {u"de-DE", u"uk-UA"};
int handleStorage[2];

} // namespace
} // namespace fake_lib

using namespace fake_lib;

// A file accessor: the item's text for a handle that is out, null for any other.
#define FILE_ITEM(name, value)                                                                                         \
    QOR_LANG2_CHAR* QOR_LANG2_FILE_get##name(QOR_LANG2_FILE_HANDLE file)                                               \
    {                                                                                                                  \
        return books().liveHandles.count(file) ? give(value) : nullptr;                                                \
    }                                                                                                                  \
    static_assert(true)

extern "C" {

int32_t QOR_LANG2_add(const QOR_LANG2_CHAR* folderPath, void*, const QOR_LANG2_CHAR* appId)
{
    record({folderPath, appId});
    return 0;
}
int32_t QOR_LANG2_setCurrentLanguage(const QOR_LANG2_CHAR* tag)
{
    record({tag});
    return text(tag).size() == 5 ? 0 : 20;
}
QOR_LANG2_CHAR* QOR_LANG2_getCurrentLanguage(void)
{
    return books().outOfMemory ? nullptr : give(u"de-DE");
}
QOR_LANG2_CHAR* QOR_LANG2_getLanguage(const QOR_LANG2_CHAR* appId, int32_t index)
{
    return knownLanguage(appId, index) ? give(kTags[index]) : nullptr;
}
QOR_LANG2_FILE_HANDLE QOR_LANG2_getLanguageFile(const QOR_LANG2_CHAR* appId, int32_t index)
{
    return knownLanguage(appId, index) ? *books().liveHandles.insert(&handleStorage[index]).first : nullptr;
}
QOR_LANG2_CHAR* QOR_LANG2_findLocalizedFile(const QOR_LANG2_CHAR* folderUri, const QOR_LANG2_CHAR* prefix,
                                            const QOR_LANG2_CHAR* infix, const QOR_LANG2_CHAR* suffix)
{
    record({folderUri, prefix, infix, suffix});
    return text(prefix) == u"help_" ? give(u"/help/help_de-DE.txt") : nullptr;
}
QOR_LANG2_CHAR* QOR_LANG2_getLocalString(const QOR_LANG2_CHAR* key, const QOR_LANG2_CHAR* defaultText)
{
    record({key, defaultText});
    if (books().outOfMemory)
        return nullptr;
    return give(text(key) == u"greeting" ? u"Grüß Gott, Привіт \U0001F30D" : text(defaultText));
}
void QOR_LANG2_freeWideString(QOR_LANG2_CHAR* text)
{
    if (text && books().liveStrings.erase(text) == 0)
        ++books().badFrees;
    else
        delete[] text;
}
void QOR_LANG2_freeQorLangFile(QOR_LANG2_FILE_HANDLE file)
{
    if (file && books().liveHandles.erase(file) == 0)
        ++books().badFrees;
}
FILE_ITEM(Author, u"Ünal");
FILE_ITEM(Comment, u"");
FILE_ITEM(NativeName, u"Deutsch");
FILE_ITEM(LanguageID, u"de-DE");

} // extern "C"
