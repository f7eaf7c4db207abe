// A language file as a host meets it: the bytes become "fz-de-DE.qorlang" in a folder registered
// under "fz", then the host lists the folder, reads every file's descriptive data, makes the
// language current and looks texts up. The last bytes of the input double as a key, so that
// look-ups can hit keys the fuzzer invents.
#include "FuzzTargets.h"

#include "qor_lang2.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace qor_fuzz {

namespace {

const QOR_LANG2_CHAR* w(const std::u16string& text)
{
    return reinterpret_cast<const QOR_LANG2_CHAR*>(text.c_str());
}

// Reads and frees a string the library returned.
size_t consume(QOR_LANG2_CHAR* text)
{
    size_t length = 0;
    while (text && text[length] != 0)
        ++length;
    QOR_LANG2_freeWideString(text);
    return length;
}

const std::u16string kAppId = u"fz";

// One temporary folder per process, registered under "fz".
struct CFuzzFolder {
    std::filesystem::path path;
    bool registered = false;

    CFuzzFolder()
    {
        std::random_device random;
        do
            path = std::filesystem::temp_directory_path() / ("qor_fuzz_" + std::to_string(random()));
        while (!std::filesystem::create_directory(path));
        registered = QOR_LANG2_add(w(path.u16string()), nullptr, w(kAppId)) == 0;
    }
    ~CFuzzFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

} // namespace

void fuzzLanguageFile(const uint8_t* data, size_t size)
{
    static CFuzzFolder folder;
    check(folder.registered);
    std::ofstream(folder.path / "fz-de-DE.qorlang", std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    check(QOR_LANG2_reload() == 0);

    const int32_t count = QOR_LANG2_getLanguageCount(w(kAppId));
    for (int32_t i = -1; i <= count; ++i) {
        consume(QOR_LANG2_getLanguage(w(kAppId), i));
        QOR_LANG2_FILE_HANDLE file = QOR_LANG2_getLanguageFile(w(kAppId), i);
        if (!file)
            continue;
        for (auto accessor :
             {QOR_LANG2_FILE_getAppID, QOR_LANG2_FILE_getAuthor, QOR_LANG2_FILE_getComment,
              QOR_LANG2_FILE_getEnglishName, QOR_LANG2_FILE_getEnglishSubName, QOR_LANG2_FILE_getNativeName,
              QOR_LANG2_FILE_getNativeSubName, QOR_LANG2_FILE_getLanguageID})
            consume(accessor(file));
        QOR_LANG2_freeQorLangFile(file);
    }

    check(QOR_LANG2_setCurrentLanguage(w(u"de-DE")) == 0);
    consume(QOR_LANG2_getCurrentLanguage());

    std::u16string tailKey;
    for (size_t i = size >= 8 ? size - 8 : 0; i + 1 < size; i += 2)
        tailKey += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    for (const std::u16string& key : {std::u16string(u"greeting"), std::u16string(u"farewell"),
                                      std::u16string(u"empty"), std::u16string(), tailKey})
        consume(QOR_LANG2_getLocalString(w(key), w(u"default")));
}

} // namespace qor_fuzz
