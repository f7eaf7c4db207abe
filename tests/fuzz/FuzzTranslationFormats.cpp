// Translators' files as the qorlang tool reads them (PO, XLIFF, Qt TS, i18next JSON): parsed, written back in
// the same format and read again, and compiled into a language file whose answers are asked for.
// What the writer produced must read back; refusing a file with the tool's error is an answer.
#include "FuzzTargets.h"

#include "Formats.h"

#include <exception>

namespace qor_fuzz {

namespace {

using qorlang::Catalogue;
using qorlang::Format;

void fuzzFormat(Format format, const uint8_t* data, size_t size)
{
    Catalogue catalogue;
    try {
        catalogue = qorlang::readCatalogueBytes("fuzz", std::string(reinterpret_cast<const char*>(data), size), format);
    } catch (const std::exception&) {
        return;
    }

    // Some texts cannot be written in some formats (control characters in XML).
    std::string written;
    tolerate([&] { written = qorlang::writeCatalogue(catalogue, format); });
    try {
        if (!written.empty())
            qorlang::readCatalogueBytes("fuzz", written, format);
    } catch (const std::exception&) {
        __builtin_trap();
    }

    tolerate([&] {
        catalogue.appId = u"fz";
        catalogue.language = catalogue.language ? qorlang::normalisedTag(*catalogue.language) : std::nullopt;
        if (!catalogue.language)
            catalogue.language = u"de-DE";
        const std::vector<uint8_t> file = qorlang::compileLanguageFile(catalogue, {true});
        for (size_t i = 0; i < catalogue.entries.size() && i < 4; ++i)
            qorlang::answerOf(file, catalogue.entries[i].key);
    });
}

} // namespace

void fuzzPo(const uint8_t* data, size_t size)
{
    fuzzFormat(Format::Po, data, size);
}
void fuzzXliff(const uint8_t* data, size_t size)
{
    fuzzFormat(Format::Xliff, data, size);
}
void fuzzTs(const uint8_t* data, size_t size)
{
    fuzzFormat(Format::Ts, data, size);
}
void fuzzI18next(const uint8_t* data, size_t size)
{
    fuzzFormat(Format::Json, data, size);
}

} // namespace qor_fuzz
