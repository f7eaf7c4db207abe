// The demo's second version, built and run by the workflow test in every language:
// demo FOLDER TAG prints its texts in the language TAG from the language files in FOLDER.
#include <qor_lang2.h>
#include <qor_lang2.hpp>

#include <cstdio>
#include <string_view>

int main(int argc, char** argv)
{
    using namespace std::string_view_literals;
    if (argc != 3)
        return 2;
    qor_lang2::add(std::string_view(argv[1]), "demo"sv);
    qor_lang2::setCurrentLanguage(std::string_view(argv[2]));
    // TRANSLATORS: the title of the main window
    std::printf("%s\n", qor_lang2::tr("app.title"sv, "Workflow demo"sv).c_str());
    std::printf("%s\n", qor_lang2::tr("Open a file"sv, "Open a file"sv).c_str());
    std::printf("%s\n", qor_lang2::tr("Save %s"sv, "Save %s"sv).c_str());
    QOR_LANG2_CHAR* status = QOR_LANG2_getLocalString(u"status.ready", u"Ready");
    std::printf("%s\n", qor_lang2::toUtf8(status).c_str());
    QOR_LANG2_freeWideString(status);
    for (unsigned long n : {1ul, 2ul})
        std::printf("%s\n", qor_lang2::trn("%d file"sv, "%d files found"sv, n).c_str());
    return 0;
}
