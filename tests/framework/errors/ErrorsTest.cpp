#include "FrameworkTest.h"

#include "framework/errors/CCastError.h"
#include "framework/errors/CEndOfEnumError.h"
#include "framework/errors/CEndOfStreamError.h"
#include "framework/errors/CFileAccessDeniedError.h"
#include "framework/errors/CFileNotFoundError.h"
#include "framework/errors/CInvalidObjectStateError.h"
#include "framework/errors/CInvalidVolumeIDError.h"
#include "framework/errors/CJsonParserError.h"
#include "framework/errors/CMethodNotImplementedError.h"
#include "framework/errors/CNoSuchObjectError.h"
#include "framework/errors/COutOfmemoryException.h"
#include "framework/errors/CParseError.h"
#include "framework/errors/CReadOnlyError.h"
#include "framework/errors/CStreamClosedError.h"
#include "framework/errors/CURIFormatError.h"
#include "framework/errors/CURITypeNotSupportedError.h"
#include "framework/io/CURI.h"
#include "framework/objects/IComparable.h"

#include <typeinfo>

namespace kore_test {

// Every error class with the texts it builds when no translation exists; its clone must be a new
// error of the same class with the same texts, the same object or URI, and a count of 1.
TEST(Errors, TextsOfEveryClassAndClonesThatMatchThem)
{
    const P<CObject> object = make<CObject>();
    const P<CURI> uri = CURI::fromURIText("file:///data/a.txt");
    const std::string u = uri->toString()->toUTF8();
    struct Row {
        P<CException> error;
        std::string general, description;
    };
    const std::vector<Row> rows = {
        {make<CException>("G", "D"), "G", "D"},
        {make<CError>("G", "D"), "G", "D"},
        {make<CError>("", ""), "Error", "Unspecified error"},
        {make<COutOfmemoryException>(), "OutOfMemory", "Unspecified error"},
        {make<CObjectError>(object.get(), "<%OBJECTDESC%|%OBJECTDESC%>", "given"), "Object error", "<given|given>"},
        {make<CObjectError>(object.get(), "<%OBJECTDESC%>"), "Object error", "<class kore::CObject object>"},
        {make<CObjectError>(nullptr, "<%OBJECTDESC%>"), "Object error", "<unknown object>"},
        {make<CCastError>(object.get(), typeid(IComparable)), "Cast error",
         "Error casting a 'class kore::CObject' object to 'class kore::IComparable'."},
        {make<CInvalidArgError>(object.get(), "m", "a"), "Object error",
         "An invalid argument was passed to method 'm' of 'class kore::CObject object': a"},
        {make<CMethodNotImplementedError>(object.get(), ""), "Object error",
         "Method not implemented (unspecified method.)"},
        {make<CInvalidObjectStateError>(object.get(), "closed"), "Object error",
         "The object is in an invalid state (closed)."},
        {make<CEndOfEnumError>(object.get()), "Object error", "end of enumeration already reached"},
        {make<CNoSuchObjectError>("name"), "Error", "No such object."},
        {make<CReadOnlyError>("the table"), "Error", "The object (the table) is read-only and cannot be changed."},
        {make<CParseError>("p"), "Parse error", "p"},
        {make<CJsonParserError>("j"), "JSONParser Error", "j"},
        {make<CInvalidVolumeIDError>("Q:"), "Invalid Volume ID Error", "Invalid volume id: Q:"},
        {make<CURIError>(uri.get(), "G", "D"), "G", "D"},
        {make<CURIFormatError>(uri.get()), "The URI has an invalid format.",
         "The URI ('" + u + "') has an invalid format."},
        {make<CURITypeNotSupportedError>(uri.get()), "This type URI is not supported.",
         "This type of URI ('" + u + "') is not supported."},
        {make<CFileError>(uri.get(), "D"), "FileError", "D"},
        {make<CFileNotFoundError>(uri.get()), "The file was not found.", "The file '" + u + "' was not found."},
        {make<CFileAccessDeniedError>(uri.get()), "FileError", "The access of the file '" + u + "' was denied."},
        {make<CStreamError>(uri.get(), "G", "D"), "G", "D"},
        {make<CEndOfStreamError>(uri.get(), "G"), "G", "Unexpected end of data stream (uri: '" + u + "')"},
        {make<CEndOfStreamError>(nullptr, "G"), "G", "Unexpected end of data stream."},
        {make<CStreamClosedError>(uri.get(), "G"), "G", "The stream has been closed."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.description);
        const P<CException>& error = row.error;
        const P<CException> copy = error->clone();
        ASSERT_TRUE(copy && copy != error && typeid(*copy) == typeid(*error) && copy->getRefCount() == 1);
        for (const P<CException>& e : {error, copy})
            EXPECT_EQ(e->getGeneralDescription()->toUTF8() + " | " + e->getDescription()->toUTF8(),
                      row.general + " | " + row.description);
        EXPECT_STREQ(error->what(), row.description.c_str());
        const auto* objectError = dynamic_cast<const CObjectError*>(error.get());
        const auto* uriError = dynamic_cast<const CURIError*>(error.get());
        EXPECT_TRUE(!objectError || dynamic_cast<const CObjectError&>(*copy).getObject() == objectError->getObject());
        EXPECT_TRUE(!uriError || dynamic_cast<const CURIError&>(*copy).getURI() == uriError->getURI());
    }

    // what() hands the description over in the process code page: one byte per character of
    // Latin-1, no UTF-8 (characters beyond it depend on the host's page and locale).
    const CError error("G", u"Gr\u00f6\u00dfe 5");
    EXPECT_EQ(std::string(error.what()), "Gr\xf6\xdf"
                                         "e 5");
    EXPECT_EQ(error.what(), error.what()) << "converted once and kept";
}

} // namespace kore_test
