// Loads the translations that the build compiled and checks a few answers through the C++ layer,
// in both its UTF-8 and its UTF-16 form. Exit status 0 when every answer is right.
#include <qor_lang2.hpp>

#include <iostream>
#include <string>

int main(int argc, char** argv)
{
    int failures = 0;
    const auto expect = [&](bool ok, const char* what) {
        if (!ok && ++failures)
            std::cerr << "FAILED: " << what << "\n";
    };
    expect(argc == 2 && qor_lang2::add(argv[1], "consumer") == 0, "add <language folder>");
    expect(qor_lang2::languageCount("consumer") == 2, "two languages");
    for (int32_t i = 0; i < qor_lang2::languageCount(u"consumer"); ++i) {
        const qor_lang2::File file = qor_lang2::languageFile("consumer", i);
        std::cout << qor_lang2::language("consumer", i).utf8() << ": " << file.nativeName().utf8() << " ("
                  << file.englishName().utf8() << "), by " << file.author().utf8() << "\n";
    }
    expect(qor_lang2::setCurrentLanguage("uk-UA") == 0, "set uk-UA");
    expect(qor_lang2::currentLanguage().utf8() == "uk-UA", "current language");
    expect(qor_lang2::tr("greeting", "Hello, world") == "Привіт, світе 🌍", "UTF-8 greeting");
    expect(qor_lang2::tr(u"greeting", u"Hello, world") == u"Привіт, світе 🌍", "UTF-16 greeting");
    expect(qor_lang2::tr("farewell", "Goodbye") == "Goodbye", "a fuzzy entry is left out, so the default answers");
    expect(qor_lang2::setCurrentLanguage("de-DE") == 0, "set de-DE");
    expect(qor_lang2::tr("farewell", "Goodbye") == "Auf Wiedersehen", "German farewell");
    expect(qor_lang2::setCurrentLanguage("de") == 20, "a bare language is no tag");
    std::cout << (failures ? "cmake consumer: FAILED\n" : "cmake consumer: ok\n");
    return failures ? 1 : 0;
}
