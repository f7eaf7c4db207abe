// Value stores: typed values in value lists, round trips through the JSON and (where built) XML
// stores, and the promise that a store never loses data.
#include "FrameworkTest.h"
#include "TempFolder.h"
#include "VariantTestSupport.h"

#include "framework/values/CJsonParser.h"
#include "framework/values/CNull.h"
#include "framework/values/IValueStore.h"
#include "framework/values/IValueStoreManager.h"

#include <cmath>

namespace kore_test {

namespace {

P<IValueStore> storeFor(const CTempFolder& folder, const std::string& name)
{
    return IValueStoreManager::instance()->createStore(*CURI::fromLocalPath(CString::fromUTF8(folder.utf8(name))));
}

// Entries in the folder, by name.
const auto folderContent = [](const CTempFolder& folder) { return names(folder.uri(), "*"); };

} // namespace

TEST(ValueList, TypedValuesAndSwap)
{
    auto list = make<CValueList>();
    list->setInteger("small", -5);
    list->setInteger("large", int64_t{1} << 40);
    list->setDouble("real", 0.25);
    list->setBool("flag", false);
    list->setString("text", u"\u00e9");
    list->set("nested", make<CValueList>());
    EXPECT_EQ(describe(*list), "list{flag=false;large=int64 1099511627776;nested=list{};real=double 0.25;"
                               "small=int -5;text=string '\u00e9';}");
    EXPECT_EQ(list->getInteger("large"), int64_t{1} << 40);
    EXPECT_EQ(list->getDouble("small"), -5.0) << "an integer reads as a double, not the reverse";
    EXPECT_EQ(list->getBool("flag"), false);
    EXPECT_NE(list->getList("nested"), nullptr);
    EXPECT_FALSE(list->getInteger("real") || list->getBool("text") || list->getDouble("missing") ||
                 list->getList("text"));

    auto other = make<CValueList>();
    other->setBool("only", true);
    list->swap(*other);
    EXPECT_EQ(describe(*list), "list{only=true;}");
    EXPECT_EQ(other->peekString("text")->toUTF8(), "\u00e9");
    auto object = make<CObject>();
    other->set(u"text", object);
    EXPECT_EQ(other->get("text"), object);
    EXPECT_EQ(other->peekString("text"), nullptr) << "not a string";
    EXPECT_EQ(other->get("Text"), nullptr);
    EXPECT_THROW(other->set("beta", nullptr), CInvalidArgError);
    EXPECT_EQ(other->getCount(), 6u);
    other->clear();
    EXPECT_EQ(object->getRefCount(), 1);
}

// The manager chooses the store by the extension, whatever its case.
TEST(ValueStore, RoundTripsKeepEveryValueAndFailuresLoseNone)
{
    for (const std::string extension : {"JSON", "xml"}) {
        SCOPED_TRACE(extension);
        CTempFolder folder;
        for (const char* unsupported : {"values.ini", "json"})
            EXPECT_THROW(storeFor(folder, unsupported), CURITypeNotSupportedError);
        const std::string name = "v\u00e4lues." + extension;
        const P<IValueStore> store = storeFor(folder, name);
        CValueList& list = *store->getValueList();
        // clang-format off
        for (const auto& [key, value] : {std::pair{"title", "Gr\u00fc\u00dfe \u0928\u0947 \U0001F600 \u0800 <&>\"'"},
                 {"lines", " two\n\tlines \\ "}, {"", ""}, {"control", "a\x01" "b\x1f\r\b\f"}, {"spaces", " \t\n"}})
            list.setString(key, CString::fromUTF8(value));
        for (const auto& [key, value] : {std::pair{"pi", 3.141592653589793}, {"tiny", 5e-324}, {"two", 2.0},
                 {"big", -1.7976931348623157e308}})
            list.setDouble(key, value);
        // clang-format on
        list.setInteger("int", std::numeric_limits<int32_t>::min());
        list.setInteger("int64", std::numeric_limits<int64_t>::min());
        list.setBool("yes", true);
        list.set("none", make<CNull>());
        auto nested = make<CValueList>();
        nested->setString(u"\u043a\u043b\u044e\u0447", u"\u0437\u043d\u0430\u0447\u0435\u043d\u0438\u0435");
        nested->set("deeper", make<CValueList>());
        list.set("nested", nested);
        list.set("array", make<CJsonParser>()->parseUTF8(R"([1,"x",{"a":0.1},[]])"));

        store->store();
        EXPECT_EQ(folderContent(folder), std::vector<std::string>{name});
        const P<IValueStore> again = storeFor(folder, name);
        again->load();
        EXPECT_EQ(describe(*again->getValueList()), describe(list));

        // Storing again replaces the file as a whole.
        list.clear();
        list.setInteger("only", 1);
        store->store();
        again->load();
        EXPECT_EQ(describe(*again->getValueList()), "list{only=int 1;}");
        EXPECT_EQ(folderContent(folder), std::vector<std::string>{name});

        std::filesystem::remove(folder.path(name));
        list.clear();
        list.setString("kept", "yes");
        const bool json = extension == "JSON";
        // A missing file, and files that do not parse, leave the list as it was.
        EXPECT_THROW(store->load(), CFileNotFoundError);
        // Cut short, not a list, an unnamed entry or bad UTF-8, a value of the wrong form.
        const char* broken[] = {
            "",
            json ? "{\"a\":" : "<values><value name=\"a\" type=\"int\">1</value>",
            json ? "[1]" : "<other/>",
            json ? "{\"a\":\"\xC3\"}" : "<values><value type=\"int\">1</value></values>",
            json ? "{\"a\":1}x" : "<values><value name=\"a\" type=\"int\">x</value></values>",
        };
        for (const char* content : broken) {
            SCOPED_TRACE(content);
            folder.writeFile(name, content);
            expectThrown<CFileError>([&] { store->load(); },
                                     [&](const CFileError& e) {
                                         ASSERT_NE(e.getURI(), nullptr);
                                         EXPECT_TRUE(e.getURI()->toString()->equals(store->getURI()->toString()));
                                         EXPECT_NE(e.getDescription()->find(store->getURI()->toString()),
                                                   IString::kNotFound);
                                     });
            EXPECT_EQ(describe(list), "list{kept=string 'yes';}");
        }

        // A value the format cannot hold, or a folder that is gone, leaves the old file as it was
        // and no temporary file behind.
        store->store();
        const std::string before = folder.readFile(name);
        list.set("object", make<CObject>());
        if (json)
            list.setDouble("infinite", INFINITY);
        EXPECT_THROW(store->store(), CInvalidArgError);
        EXPECT_EQ(folder.readFile(name), before);
        EXPECT_EQ(folderContent(folder), std::vector<std::string>{name});

        const P<IValueStore> lost = storeFor(folder, "gone/x." + extension);
        EXPECT_THROW(lost->store(), CFileError);
        EXPECT_EQ(folderContent(folder), std::vector<std::string>{name});
    }
}

} // namespace kore_test
