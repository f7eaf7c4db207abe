#pragma once
// Reading and writing the formats the tool knows, chosen by file extension, and the language
// file itself. Paths are UTF-8. Every failure is a kore::CException whose description names the
// file (and the line, for source formats).

#include "Catalogue.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qorlang {

enum class Format { Po, Xliff, Ts, Json, Text, Qorlang };

// How a Qt TS <context><name> enters the keys: Keep makes it the context "name|comment" (what
// lconvert makes of it in PO), Drop leaves the comment alone as the context, Auto drops it for a
// context whose every source looks like a key. A context named "qor_lang2" (lupdate's for
// qor_lang2::tr calls, whose comment is tr's default text) gives the bare source unless kept.
enum class QtContext { Auto, Keep, Drop };

// By extension (".po", ".xlf"/".xliff", ".ts", ".json", ".txt", ".qorlang"); fails for others.
Format formatOf(const std::string& path);

Catalogue readCatalogue(const std::string& path, QtContext qtContext = QtContext::Auto);
// The same for the bytes of a file named `path` (its format as its extension says).
Catalogue readCatalogueBytes(const std::string& path, const std::string& bytes, QtContext qtContext = QtContext::Auto);
Catalogue readCatalogueBytes(const std::string& path, const std::string& bytes, Format format,
                             QtContext qtContext = QtContext::Auto);
// The text of `catalogue` in a source format (not Format::Qorlang, not Format::Text).
std::string writeCatalogue(const Catalogue& catalogue, Format format);

// Each format's reader and writer, on the file's bytes.
Catalogue readPo(const std::string& path, const std::string& bytes);
std::string writePo(const Catalogue& catalogue);
Catalogue readXliff(const std::string& path, const std::string& bytes);
std::string writeXliff(const Catalogue& catalogue);
Catalogue readTs(const std::string& path, const std::string& bytes, QtContext qtContext = QtContext::Auto);
std::string writeTs(const Catalogue& catalogue);
Catalogue readJson(const std::string& path, const std::string& bytes);
std::string writeJson(const Catalogue& catalogue);
// Joins i18next's plural keys ("item_one", "item_few", "item_other") into plural entries ("item")
// whose forms follow `tag`'s CLDR categories; a missing category is an empty form, a category the
// language's whole numbers never take stays a key of its own. A group needs the language's last
// category and another of its categories (only the last where the language has a single form).
void joinI18nextPlurals(Catalogue& catalogue, std::u16string_view tag);
Catalogue readText(const std::string& path, const std::string& bytes);
// A language file: every string entry in file order, the descriptive data.
Catalogue readQorlang(const std::string& path, const std::vector<uint8_t>& bytes);

// What compile writes: the usable entries, a key defined twice kept once (the later one).
struct CompileOptions {
    bool useFuzzy = false;
};
std::vector<const Entry*> compiledEntries(const Catalogue& catalogue, const CompileOptions& options);
// The bytes of a language file; `catalogue` must carry language and application id.
std::vector<uint8_t> compileLanguageFile(const Catalogue& catalogue, const CompileOptions& options);

// The library's answers for the keys of a language file given as bytes: which of a key's
// entries answers is decided by its string table, so ask it. The table is read once, here.
std::function<std::u16string(std::u16string_view key)> answersOf(const std::vector<uint8_t>& languageFile);
inline std::u16string answerOf(const std::vector<uint8_t>& languageFile, std::u16string_view key)
{
    return answersOf(languageFile)(key);
}

// Whole-file access. writeFileAtomically writes a temporary file beside `path` and renames it
// into place, so that a failure never leaves a partial output behind.
std::string readFileBytes(const std::string& path);
void writeFileAtomically(const std::string& path, std::string_view bytes);
bool isFolder(const std::string& path);
// The last part of a path ("dir/de.po" -> "de.po").
std::string fileNameOf(const std::string& path);

// Helpers of the readers: the text of `utf8`, or the error "path:line: not valid UTF-8"; the
// number of a version field (decimal digits only, at most nine), nullopt for anything else.
std::u16string decodedOrFail(std::string_view path, int line, std::string_view utf8);
std::optional<uint32_t> versionOf(std::string_view digits);
// The other way, for the writers: the decimal digits of a version, absent when it is.
std::optional<std::u16string> versionText(std::optional<uint32_t> version);

// "ru_RU", "ru-RU.UTF-8", "de_DE@euro" -> the two-part tag the library accepts ("ru-RU"), or
// nullopt when the library would reject it or a modifier ("sr_RS@latin") names another variant.
std::optional<std::u16string> normalisedTag(std::u16string_view written);
// A c-format text with gettext's system-dependent segments ("%<PRIu64>") in this platform's
// spelling ("%lu").
std::u16string expandSystemDependent(std::u16string_view text);

// A source id that reads as a key rather than a text: letters, digits, "_" and "-" in at least
// two parts joined by "." ("app.title", "menu.file_open"), no blanks.
bool looksLikeKey(std::u16string_view source);

// The name under which the library finds the file of `appId` in `tag`: "<app>-<tag>.qorlang" with
// any "--" reduced to "-".
std::u16string languageFileName(std::u16string_view appId, std::u16string_view tag);

} // namespace qorlang
