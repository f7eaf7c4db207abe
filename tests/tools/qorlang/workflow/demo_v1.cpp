// The demo's first version, only ever extracted: the workflow test changes it into demo.cpp.
#include <qor_lang2.hpp>

#include <cstdio>
#include <string_view>

int main(int argc, char** argv)
{
    using namespace std::string_view_literals;
    qor_lang2::add(std::string_view(argv[1]), "demo"sv);
    qor_lang2::setCurrentLanguage(std::string_view(argv[2]));
    // TRANSLATORS: the title of the main window
    std::printf("%s\n", qor_lang2::tr("app.title"sv, "Workflow demo"sv).c_str());
    std::printf("%s\n", qor_lang2::tr("Open file"sv, "Open file"sv).c_str());
    std::printf("%s\n", qor_lang2::tr("Delete everything"sv, "Delete everything"sv).c_str());
    std::printf("%s\n", qor_lang2::trc("menu"sv, "Quit"sv, "Quit"sv).c_str());
    std::printf(qor_lang2::trn("%d file"sv, "%d files"sv, argc).c_str(), argc);
    return argc > 3 ? 0 : 1;
}
