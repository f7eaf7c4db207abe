// JSON text read by the framework's parser, as UTF-8 bytes and as Latin-1 text. What it accepts
// is printed, compact and pretty; the printed text must parse again, and print the same once it
// has been through the parser once.
#include "FuzzTargets.h"

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

// Printed text reads back. The first round may change it ("-0" reads as the integer 0, a double
// prints with six digits); from then on it stays the same.
void printAndReparse(const P<IBase>& tree)
{
    for (bool pretty : {false, true}) {
        kore::CJsonPrinter printer(pretty);
        const P<IString> first = printer.print(reparse(*printer.print(tree.get())).get());
        check(printer.print(reparse(*first).get())->equals(*first));
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
