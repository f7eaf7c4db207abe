// Writes the fuzz targets' seed inputs: make_seeds <corpus folder>. Language files and containers
// come from the project's own writers; the other seeds are texts in the layout each target
// reads (see the target's body).
#include "chunk_file/CChunkFileWriter.h"
#include "chunk_file/CMemoryStream.h"
#include "chunk_file/ChunkId.h"
#include "chunk_file/TChunkRef.h"
#include "framework/text/CLatin1CharEncoding.h"
#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/CUTF32CharEncoding.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"
#include "qor_lang_manager/CLanguageFileWriter.h"

#include "Formats.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::string;

std::filesystem::path g_corpus;

void save(const std::string& target, const std::string& name, const Bytes& bytes)
{
    const std::filesystem::path folder = g_corpus / target;
    std::filesystem::create_directories(folder);
    std::ofstream(folder / name, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

Bytes bytesOf(const std::vector<uint8_t>& v)
{
    return Bytes(v.begin(), v.end());
}

Bytes languageFile(bool full)
{
    qor_lang::CLanguageFileWriter writer;
    writer.setLanguage(u"de-DE", u"Deutsch", full ? std::optional<std::u16string>(u"Deutschland") : std::nullopt);
    writer.setApplication(u"fz");
    if (full) {
        writer.setComment(u"Beispiel");
        writer.setAuthor(u"Jürgen");
        writer.addExtra(u"QOR_LANG_AUTHOR", u"Later");
        writer.setVersion(3);
        writer.addString(u"greeting", u"Hallo, %s!");
        writer.addString(u"farewell", u"Tschüss");
        writer.addString(u"greeting", u"Guten Tag");
        writer.addString(u"empty", u"");
    } else {
        writer.addString(u"greeting", u"Hallo");
    }
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream());
    writer.write(*stream);
    return bytesOf(stream->getBytes());
}

// A container with plain and nested chunks, through the container's writer.
Bytes nestedContainer()
{
    chf::TChunkRef<chf::CMemoryStream> stream(new chf::CMemoryStream());
    {
        chf::TChunkRef<chf::CChunkFile> file(chf::CChunkFileWriter::createFile(stream.get()));
        chf::CChunkFileWriter::appendChunk(file.get(), chf::makeChunkId("lang"), "abcdef", 6);
        chf::TChunkRef<chf::CChunkIterator> outer(
            chf::CChunkFileWriter::appendChunkIterator(file.get(), chf::makeChunkId("STMP")));
        chf::CChunkFileWriter::appendChunk(outer.get(), chf::makeChunkId("data"), "0123456789", 10);
        {
            chf::TChunkRef<chf::CChunkIterator> inner(
                chf::CChunkFileWriter::appendChunkIterator(outer.get(), chf::makeChunkId("sub_")));
            chf::CChunkFileWriter::appendChunk(inner.get(), chf::makeChunkId("data"), "xy", 2);
        }
        chf::CChunkFileWriter::appendChunk(file.get(), chf::makeChunkId("vers"), "\1\0\0\0", 4);
    }
    return bytesOf(stream->getBytes());
}

// Operations for the container target: op, then a 16-bit argument.
Bytes program(std::initializer_list<std::pair<uint8_t, uint16_t>> ops)
{
    Bytes out(1, static_cast<char>(ops.size()));
    for (auto [op, arg] : ops)
        out += {static_cast<char>(op), static_cast<char>(arg & 0xFF), static_cast<char>(arg >> 8)};
    return out;
}

Bytes encoded(const std::u16string& text, kore::ICharEncoding& encoding)
{
    const kore::P<kore::IString> s = kore::CString::fromUTF16(text)->convertTo(encoding);
    return Bytes(reinterpret_cast<const char*>(s->getBuffer()), s->getByteLength());
}

Bytes piece(const Bytes& bytes)
{
    return Bytes(1, static_cast<char>(bytes.size())) + bytes;
}

Bytes le32(uint32_t v)
{
    return {char(v), char(v >> 8), char(v >> 16), char(v >> 24)};
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    g_corpus = argv[1];

    const Bytes full = languageFile(true);
    save("language_file", "full", full);
    save("language_file", "minimal", languageFile(false));
    save("language_file", "cut", full.substr(0, full.size() * 2 / 3));

    const Bytes nested = nestedContainer();
    // next, into "STMP", read, write, insert and remove space in open children, append.
    save("chunk_file", "walk",
         program({{0, 0}, {0, 0}, {2, 0}, {0, 0}, {4, 0}, {0, 0}, {2, 0}, {0, 0}, {6, 0x0801}}) + nested);
    save("chunk_file", "edit",
         program({{0, 0},
                  {0, 0},
                  {2, 0},
                  {0, 0},
                  {4, 0},
                  {8, 0x0403},
                  {7, 0x0502},
                  {9, 0x0205},
                  {0, 0},
                  {2, 0},
                  {0, 0},
                  {4, 0},
                  {9, 0x0301},
                  {11, 0x0702},
                  {5, 1},
                  {3, 0},
                  {11, 0x0301},
                  {8, 0x0A00}}) +
             nested);
    save("chunk_file", "language", program({{10, 0}, {2, 0}, {0, 0}, {4, 0}, {9, 0x0810}, {3, 0}}) + full);

    const std::u16string sample = u"Grüße, 日本 \U0001F600 ÆØÅ €";
    const std::u16string other = u"ße, 日";
    const struct {
        const char* name;
        uint8_t selectors;
        kore::ICharEncoding& first;
        kore::ICharEncoding& second;
    } encodings[] = {
        {"utf8_utf16", 0 | 1 << 3, *kore::CUTF8CharEncoding::instance(), *kore::CUTF16CharEncoding::instance()},
        {"utf32_latin1", 2 | 3 << 3, *kore::CUTF32CharEncoding::instance(), *kore::CLatin1CharEncoding::instance()},
        {"cp_utf8", 4 | 0 << 3, *kore::CCPCharEncoding::instance(), *kore::CUTF8CharEncoding::instance()},
    };
    for (const auto& e : encodings)
        save("encodings", e.name,
             Bytes{char(e.selectors), 2, 5} + piece(encoded(sample, e.first)) + encoded(other, e.second));

    const char* formats[][2] = {
        {"file", "%s-%s.qorlang"},
        {"numbers", "%5d|%-8.3f|%c|%#x|%+05i|%o|%X|%u"},
        {"star", "%*.*s|%-*d|%.*e"},
        {"modifiers", "%lld %I64u %hhd %zu %Lg %G %%"},
    };
    for (const auto& [name, format] : formats) {
        Bytes args;
        for (int i = 0; i < 10; ++i)
            args += Bytes(1, char(0x10 * i + 1)) + le32(42u + i) + le32(i % 3 == 0 ? 0xFFFFFFFF : 0) + "\x08" + "ab";
        save("string_format", name, piece(format) + args);
    }

    const char* uris[][3] = {
        {"drive", "\x02", "C:\\Lang\\de"},
        {"unc", "\x02", "\\\\server\\share\\x y"},
        {"long", "\x02", "\\\\?\\C:\\Program Files\\x"},
        {"posix", "\x04", "/usr/share/lang"},
        {"file_uri", "\x00", "file:///C:/Lang/%C3%A4/"},
        {"http", "\x00", "http://user@host:80/a%20b/c?q=1#frag"},
        {"localhost", "\x04", "file://localhost/etc/x"},
        {"mailto", "\x00", "mailto:x@y"},
    };
    for (const auto& [name, mode, text] : uris)
        save("uri", name, Bytes(1, mode[0]) + piece("de-DE.qorlang") + text);
    // JSON from the framework's printer, compact and pretty: every kind of value, nesting,
    // escapes, a surrogate pair, numbers of each width.
    const char* json =
        R"({"app": "fz", "count": 3, "big": 12345678901, "huge": 1e300, "ratio": -0.25, "ok": true,)"
        R"( "no": false, "none": null, "list": [1, [2, [3, {}]], []], "text": "tab\t\"quote\" \u00e4 \ud83d\ude00",)"
        R"( "nested": {"a": {"b": {"c": "deep"}}}})";
    const kore::P<kore::IBase> tree = kore::CJsonParser().parseUTF8(json);
    save("json", "compact", kore::CJsonPrinter(false).print(tree.get())->toUTF8());
    save("json", "pretty", kore::CJsonPrinter(true).print(tree.get())->toUTF8());

    // Translators' files from the qorlang tool's own writers: context, plural, fuzzy and obsolete
    // entries, descriptive data, texts with placeholders, markup characters and non-ASCII.
    qorlang::Catalogue catalogue;
    catalogue.language = u"de_DE";
    catalogue.author = u"Jürgen";
    catalogue.comment = u"Beispiel";
    catalogue.appId = u"fz";
    catalogue.nativeName = u"Deutsch";
    catalogue.version = 2;
    catalogue.entries = {
        {.key = u"greeting", .text = u"Hallo, %s!"},
        {.key = u"menu\x04Open", .text = u"Öffnen…"},
        {.key = u"%d file", .text = u"%d Datei", .plural = true},
        {.key = u"<b>bold</b> & \"quoted\"", .text = u"<b>fett</b> & „zitiert“"},
        {.key = u"fuzzy one", .text = u"unsicher", .fuzzy = true},
        {.key = u"gone", .text = u"weg", .obsolete = true},
        {.key = u"multi\nline\ttab", .text = u"mehr\nzeilig {name} %1$s"},
    };
    const struct {
        const char* target;
        qorlang::Format format;
    } forms[] = {{"qorlang_po", qorlang::Format::Po},
                 {"qorlang_xliff", qorlang::Format::Xliff},
                 {"qorlang_ts", qorlang::Format::Ts},
                 {"qorlang_json", qorlang::Format::Json}};
    for (const auto& form : forms) {
        save(form.target, "catalogue", qorlang::writeCatalogue(catalogue, form.format));
        qorlang::Catalogue bare;
        bare.entries = {{.key = u"key", .text = u"text"}};
        save(form.target, "bare", qorlang::writeCatalogue(bare, form.format));
    }
    return 0;
}
