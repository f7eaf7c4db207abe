// JSON text read by the framework's parser, as UTF-8 bytes and as Latin-1 text. What it accepts
// is printed, compact and pretty; the printed text must parse again, and print the same once it
// has been through the parser once.
#include "FuzzTargets.h"

#include "framework/text/CCharCursor.h"
#include "framework/text/CString.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"

#include <exception>
#include <string_view>

namespace qor_fuzz {

namespace {

using kore::IBase;
using kore::IString;
using kore::P;

P<IBase> reparse(const IString& printed)
{
    try {
        return kore::CJsonParser().parse(printed);
    } catch (const std::exception&) {
        __builtin_trap();
    }
}

// The default mode leaves control characters other than \b \f \n \r \t raw, and such text is not
// JSON; pretty printing's own line feeds and tabs are outside strings.
bool holdsRawControl(const IString& printed)
{
    kore::CCharCursor cursor(printed);
    for (uint32_t cp = 0; cursor.next(cp);)
        if (cp < 0x20 && cp != '\n' && cp != '\t')
            return true;
    return false;
}

// Printed text reads back, always when lossless, else unless it holds a raw control character. The
// first round may change it ("-0" reads as the integer 0, a double prints with six digits); from
// then on it stays the same.
void printAndReparse(const P<IBase>& tree)
{
    for (bool pretty : {false, true}) {
        for (bool lossless : {false, true}) {
            kore::CJsonPrinter printer(pretty, lossless);
            const P<IString> printed = printer.print(tree.get());
            if (!lossless && holdsRawControl(*printed))
                continue;
            const P<IString> first = printer.print(reparse(*printed).get());
            check(printer.print(reparse(*first).get())->equals(*first));
        }
    }
}

} // namespace

void fuzzJson(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    kore::CJsonParser parser;
    tolerate([&] { printAndReparse(parser.parseUTF8(bytes)); });
    tolerate(
        [&] { printAndReparse(parser.parse(kore::CStringArg(bytes.data(), static_cast<uint32_t>(bytes.size())))); });
}

} // namespace qor_fuzz
