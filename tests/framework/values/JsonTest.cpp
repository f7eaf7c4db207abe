// JSON printing and parsing: layouts, escapes, number kinds, the exact failure messages, and
// hostile input that must end in CJsonParserError.
#include "FrameworkTest.h"
#include "VariantTestSupport.h"

#include "framework/errors/CJsonParserError.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"

namespace kore_test {

namespace {

std::string printed(const P<IBase>& value, bool pretty = false)
{
    return make<CJsonPrinter>(pretty)->print(value.get())->toUTF8();
}
const auto parsed = [](std::string_view utf8) { return make<CJsonParser>()->parseUTF8(utf8); };
// The description of the CJsonParserError that parsing `utf8` throws, "<no error>" if none.
const auto parseFailure = [](std::string_view utf8) { return descriptionOf<CJsonParserError>([&] { parsed(utf8); }); };
// A string of the code points of the Latin-1 text `latin1`.
const auto text = [](std::string_view latin1) -> P<IBase> {
    return CString::fromUTF16(std::u16string(latin1.begin(), latin1.end()));
};

} // namespace

TEST(JsonPrinter, ScalarsEscapesObjectsAndArraysCompactAndPretty)
{
    // clang-format off
    const std::pair<P<IBase>, const char*> rows[] = {
        {text("\\n"), R"("\\n")"}, {text("\x01"), "\"\x01\""}, {text("\"\b\f\n\r\t"), R"("\"\b\f\n\r\t")"},
        {text("a/b\x1f\x7f"), "\"a/b\x1f\x7f\""}, {CString::fromUTF16(u"\u00e9\u0928\U0001F600"), "\"\u00e9\u0928\U0001F600\""},
        {make<CInt>(std::numeric_limits<int32_t>::min()), "-2147483648"},
        {make<CInt64>(std::numeric_limits<int64_t>::min()), "-9223372036854775808"},
        {make<CInt64>(std::numeric_limits<int64_t>::max()), "9223372036854775807"},
        {make<CDouble>(0.1), "0.1"}, {make<CDouble>(1e20), "1e+20"}, {make<CDouble>(2.0), "2"},
        {make<CDouble>(1234567.0), "1.23457e+06"}, {make<CBool>(true), "true"}, {make<CBool>(false), "false"},
        {make<CNull>(), "null"}, {nullptr, "null"}};
    // clang-format on
    for (const auto& [value, compact] : rows) {
        EXPECT_EQ(printed(value), compact);
        EXPECT_EQ(printed(value, true), compact);
    }
    EXPECT_THROW(printed(make<CObject>()), CInvalidArgError);

    // Keys in code-point order, escaped like strings; nested values at the deeper indent. A
    // failure leaves nothing half-printed, and the printer stays usable.
    const P<IBase> outer = parsed(R"({"\u00e9":3,"Z\"":[{},[],null],"a":{"b":true,"a":1}})");
    EXPECT_EQ(printed(outer), R"({"Z\"":[{},[],null],"a":{"a":1,"b":true},"é":3})");
    EXPECT_EQ(printed(outer, true), "{\n\t\"Z\\\"\": [\n\t\t{\n\n\t\t},\n\t\t[\n\n\t\t],\n\t\tnull\n\t],\n"
                                    "\t\"a\": {\n\t\t\"a\": 1,\n\t\t\"b\": true\n\t},\n\t\"é\": 3\n}");
    auto printer = make<CJsonPrinter>(true);
    std::u16string out = u"x";
    cast<CVariantArray>(cast<CVariantMap>(outer)->get(u"Z\""))->add(make<CObject>());
    EXPECT_THROW(printer->print(outer.get(), out), CInvalidArgError);
    EXPECT_EQ(out, u"x");
    EXPECT_EQ(printer->print(cast<CVariantMap>(outer)->get("a").get())->toUTF8(), "{\n\t\"a\": 1,\n\t\"b\": true\n}");
    EXPECT_TRUE(cast<CVariantMap>(outer)->remove("a"));
    EXPECT_FALSE(cast<CVariantMap>(outer)->remove("a"));
}

TEST(JsonParser, NumberKindsStringsAndStructure)
{
    // clang-format off
    const std::pair<const char*, const char*> rows[] = {
        {"0", "int 0"}, {"-0", "double -0.0"}, {"-0.0", "double -0.0"}, {"2147483647", "int 2147483647"},
        {"-2147483648", "int -2147483648"}, {"2147483648", "int64 2147483648"},
        {"-9223372036854775808", "int64 -9223372036854775808"}, {"9223372036854775808", "double 9.223372036854776e+18"},
        {"1.5", "double 1.5"}, {"1E2", "double 100.0"}, {"-1e-2", "double -0.01"}, {"0e+1", "double 0.0"},
        {"1e-400", "double 0.0"},
        // Escapes; surrogates without their partner; every UTF-8 character, also those led by E0 and F0.
        {R"("\"\\\/\b\f\n\r\t\u0041\u00e9")", "string '\"\\/\b\f\n\r\tA\u00e9'"}, {R"("\uD834\uDD1E")", "string '\U0001D11E'"},
        {R"("\uDD1E\uD834x\uD834\u0041")", "string '\uFFFD\uFFFDx\uFFFDA'"}, {R"("\uD834")", "string '\uFFFD'"},
        {"\"\u0928\u092e\u0938\u094d\u0924\u0947 \U0001F600 \u0800\"", "string '\u0928\u092e\u0938\u094d\u0924\u0947 \U0001F600 \u0800'"},
        {" \t\r\n true \n", "true"}, {"false", "false"}, {"null", "null"}};
    // clang-format on
    for (const auto& [input, expected] : rows)
        EXPECT_EQ(describe(parsed(input)), expected) << input;
    EXPECT_EQ(describe(parsed("0." + std::string(65, '0') + "1e-300")), "double 0.0");
    // Repeated keys keep the last value.
    EXPECT_EQ(printed(parsed(R"( { "b" : [ 1 , { } , [ ] ] , "a" : 1 , "a" : "x" } )")), R"({"a":"x","b":[1,{},[]]})");

    // Parsing from a framework string directly.
    EXPECT_EQ(describe(make<CJsonParser>()->parse(u"[\"\U0001F600\"]")), "[string '\U0001F600']");
}

TEST(JsonParser, FailuresTheirMessagesAndHostileInputThatThePrinterRefusesToo)
{
    // clang-format off
    const std::pair<const char*, const char*> messages[] = {
        {"falsx", "could not parse boolean value"}, {"[tru]", "could not parse boolean value"},
        {"fals", "could not parse boolean value"}, {R"("\u12)", "stream size to small for reading unicode char"},
        {R"("\u)", "stream size to small for reading unicode char"}, {R"("\u12G4")", "could not parse unicode escaped string"},
        {R"(["\uD834\u-123"])", "could not parse unicode escaped string"}, {"[1,]", "expected a value at character 3"},
        {"[1", "expected ',' or ']' in an array: the text ends at character 2"}};
    // Those the public JSON suite's "n_" files hold already are left to it.
    const char* malformed[] = {"{\"a\"}", "{\"a\":1,}", "{a:1}", "{\"a\" 1}", "[1 2]", "01", ".5", "1e", "1e+", "0x10", "nulL",
        "\"abc", "\"a\x01\"", "\"tab\there\"", "\"\\x\"", "\"\\", "1 2", "'a'", "\xEF\xBB\xBF{}", "[\"\xC0\xAF\"]",
        "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"", "\"\xE0\xA4\"", "\"\xFF\"", "1e999", "-1e999"};
    // clang-format on
    for (const auto& [input, message] : messages)
        EXPECT_EQ(parseFailure(input), message) << input;
    for (const char* input : malformed)
        EXPECT_THROW(parsed(input), CJsonParserError) << input;

    // The deepest nesting allowed parses; one level more fails, and so does nesting far beyond
    // what the stack could take by recursion.
    const auto nested = [](size_t depth, const char* open, const char* close) {
        std::string s;
        for (size_t i = 0; i < 2 * depth; ++i)
            s += i < depth ? open : close;
        return s;
    };
    EXPECT_NO_THROW(parsed(nested(CJsonParser::kMaxDepth, "[", "]")));
    EXPECT_NO_THROW(parsed(nested(CJsonParser::kMaxDepth, "{\"\":", "}").replace(CJsonParser::kMaxDepth * 4, 0, "0")));
    EXPECT_THROW(parsed(nested(CJsonParser::kMaxDepth + 1, "[", "]")), CJsonParserError);
    EXPECT_THROW(parsed(std::string(100000, '[')), CJsonParserError);
    EXPECT_THROW(parsed(nested(100000, "{\"a\":[", "]}")), CJsonParserError);

    // Ten thousand digits: too large for any number variant.
    EXPECT_THROW(parsed(std::string(10000, '7')), CJsonParserError);
    EXPECT_EQ(describe(parsed("0." + std::string(10000, '3'))), "double 0.3333333333333333");
    EXPECT_EQ(describe(parsed("0." + std::string(10000, '0') + "1")), "double 0.0");

    // The printer refuses what the parser would: deeper nesting (built in code, so no parser
    // limited it), and a map that holds itself, which would never end.
    const std::string deepest = nested(CJsonParser::kMaxDepth, "[", "]");
    EXPECT_EQ(printed(parsed(deepest)), deepest);
    auto deeper = make<CVariantArray>();
    deeper->add(parsed(deepest));
    std::u16string out = u"kept";
    EXPECT_THROW(make<CJsonPrinter>(true)->print(deeper.get(), out), CInvalidArgError);
    EXPECT_EQ(out, u"kept");
    P<CVariantMap> self = make<CVariantMap>();
    self->set(u"me", self);
    EXPECT_THROW(printed(self), CInvalidArgError);
    self->clear(); // breaks the cycle, so the map can be freed
}

} // namespace kore_test
