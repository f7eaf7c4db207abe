#include "framework/xml/CXmlValueStore.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/errors/CParseError.h"
#include "framework/objects/Cast.h"
#include "framework/text/CCharCursor.h"
#include "framework/text/CString.h"
#include "framework/text/CStringFormat.h"
#include "framework/text/UTF8Decoding.h"
#include "framework/values/CBool.h"
#include "framework/values/CDouble.h"
#include "framework/values/CInt.h"
#include "framework/values/CInt64.h"
#include "framework/values/CJsonParser.h"
#include "framework/values/CJsonPrinter.h"
#include "framework/values/CNull.h"
#include "framework/values/CNumberParser.h"
#include "framework/values/CVariantArray.h"
#include "framework/values/CVariantMap.h"

#include <tinyxml2.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace kore {

namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

constexpr const char* kRoot = "values";
constexpr const char* kValue = "value";

// XML cannot carry every text: a parser drops text of white space alone, turns carriage returns
// into line feeds, and most control characters may not appear at all. Such texts are written as
// JSON string literals (format="json"), which hold any text in printable characters.
bool needsJsonForm(const IString& text)
{
    bool onlyWhiteSpace = true;
    CCharCursor cursor(text);
    for (uint32_t c = 0; cursor.next(c);) {
        if (c < 0x20 && c != '\t' && c != '\n')
            return true;
        onlyWhiteSpace = onlyWhiteSpace && (c == ' ' || c == '\t' || c == '\n');
    }
    return onlyWhiteSpace && text.getLength() > 0;
}

P<IString> textFromUTF8(const char* utf8)
{
    std::u16string text;
    if (utf8 && !decodeUTF8(utf8, text))
        throw CParseError("the XML text is not UTF-8");
    return CString::fromUTF16(text);
}

// --- Writing

void writeValue(XMLElement& element, IBase& value);

// Members of a value list or map in key order, each a "value" element with a name.
template <class Container>
void writeMembers(XMLElement& parent, const Container& container)
{
    std::vector<std::pair<const IString*, IBase*>> members;
    container.forEach([&members](const IString& key, IBase& member) { members.emplace_back(&key, &member); });
    std::sort(members.begin(), members.end(),
              [](const auto& a, const auto& b) { return a.first->compare(*b.first) < 0; });
    for (const auto& [key, member] : members) {
        XMLElement* child = parent.InsertNewChildElement(kValue);
        child->SetAttribute("name", key->toUTF8().c_str());
        writeValue(*child, *member);
    }
}

void writeValue(XMLElement& element, IBase& value)
{
    const auto setScalar = [&element](const char* type, const P<IString>& text) {
        element.SetAttribute("type", type);
        element.SetText(text->toUTF8().c_str());
    };
    if (const auto* list = tryCast<CValueList>(&value)) {
        element.SetAttribute("type", "list");
        writeMembers(element, *list);
    } else if (const auto* map = tryCast<CVariantMap>(&value)) {
        element.SetAttribute("type", "map");
        writeMembers(element, *map);
    } else if (const auto* array = tryCast<CVariantArray>(&value)) {
        element.SetAttribute("type", "array");
        for (uint32_t i = 0; i < array->getCount(); ++i)
            writeValue(*element.InsertNewChildElement(kValue), *array->get(i));
    } else if (auto* text = tryCast<IString>(&value)) {
        if (needsJsonForm(*text)) {
            element.SetAttribute("format", "json");
            setScalar("string", make<CJsonPrinter>(false, true)->print(text));
        } else {
            setScalar("string", P<IString>(text));
        }
    } else if (const auto* i32 = tryCast<CInt>(&value)) {
        setScalar("int", i32->toString());
    } else if (const auto* i64 = tryCast<CInt64>(&value)) {
        setScalar("int64", i64->toString());
    } else if (const auto* real = tryCast<CDouble>(&value)) {
        setScalar("double", real->toExactString());
    } else if (const auto* flag = tryCast<CBool>(&value)) {
        setScalar("bool", flag->toString());
    } else if (tryCast<CNull>(&value)) {
        element.SetAttribute("type", "null");
    } else {
        throw CInvalidArgError(&value, "CXmlValueStore::encode", "value (no type an XML store can hold)");
    }
}

// --- Reading

P<IBase> readValue(const XMLElement& element);

// The named "value" children of `parent` into `container`, which it returns.
template <class Container>
P<Container> readMembers(const XMLElement& parent, P<Container> container)
{
    for (const XMLElement* child = parent.FirstChildElement(kValue); child; child = child->NextSiblingElement(kValue)) {
        const char* name = child->Attribute("name");
        if (!name)
            throw CParseError(formatString("a value without a name (line %d)", child->GetLineNum()));
        container->set(textFromUTF8(name), readValue(*child));
    }
    return container;
}

P<IBase> readValue(const XMLElement& element)
{
    const char* type = element.Attribute("type");
    const P<IString> text = textFromUTF8(element.GetText());
    const auto is = [type](const char* name) { return type && std::strcmp(type, name) == 0; };
    if (is("string")) {
        const char* format = element.Attribute("format");
        if (!format)
            return text;
        P<IBase> literal;
        if (std::strcmp(format, "json") == 0)
            literal = make<CJsonParser>()->parse(text);
        if (!tryCast<IString>(literal))
            throw CParseError(formatString("a text of unknown form (line %d)", element.GetLineNum()));
        return literal;
    }
    if (is("int") || is("int64")) {
        const int64_t value = CNumberParser::parseInt64(text);
        if (is("int64"))
            return make<CInt64>(value);
        if (value < INT32_MIN || value > INT32_MAX)
            throw CParseError("Error parsing integer.");
        return make<CInt>(static_cast<int32_t>(value));
    }
    if (is("double"))
        return make<CDouble>(CNumberParser::parseDouble(text));
    if (is("bool")) {
        if (!text->equals("true") && !text->equals("false"))
            throw CParseError(formatString("not a truth value (line %d)", element.GetLineNum()));
        return make<CBool>(text->equals("true"));
    }
    if (is("null"))
        return make<CNull>();
    if (is("list"))
        return readMembers(element, make<CValueList>());
    if (is("map"))
        return readMembers(element, make<CVariantMap>());
    if (is("array")) {
        auto array = make<CVariantArray>();
        for (const XMLElement* child = element.FirstChildElement(kValue); child;
             child = child->NextSiblingElement(kValue))
            array->add(readValue(*child));
        return array;
    }
    throw CParseError(formatString("unknown value type '%s' (line %d)", textFromUTF8(type), element.GetLineNum()));
}

} // namespace

void CXmlValueStore::decode(std::string_view bytes, CValueList& values) const
{
    XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    if (document.Parse(bytes.data(), bytes.size()) != tinyxml2::XML_SUCCESS)
        throw CParseError(textFromUTF8(document.ErrorStr()));
    const XMLElement* root = document.RootElement();
    if (!root || std::strcmp(root->Name(), kRoot) != 0)
        throw CParseError("the document element is not \"values\"");
    readMembers(*root, P<CValueList>(&values));
}

std::string CXmlValueStore::encode(const CValueList& values) const
{
    XMLDocument document;
    document.InsertEndChild(document.NewDeclaration());
    XMLElement* root = document.NewElement(kRoot);
    document.InsertEndChild(root);
    writeMembers(*root, values);
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return std::string(printer.CStr(), static_cast<size_t>(printer.CStrSize() - 1));
}

} // namespace kore
