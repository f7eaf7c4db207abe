#pragma once

#include "framework/values/CFileValueStore.h"

namespace kore {

// A value list in an XML file (read and written with TinyXML-2; built only where the build finds
// it). The document element "values" holds one "value" element per key:
//
//     <value name="title" type="string">Grüße</value>
//
// with the types string, int (CInt), int64, double, bool ("true"/"false"), null, list (a nested
// value list, its entries as child "value" elements), map (CVariantMap, the same) and array
// (CVariantArray, child "value" elements without a name). Doubles are written so that they read
// back exactly (CDouble::toExactString). Entries are written in key order, UTF-8, indented.
//
// Texts that XML cannot carry as they are (white space alone, carriage returns, control
// characters other than tab and line feed) are written as JSON string literals with the
// attribute format="json".
class CXmlValueStore : public CFileValueStore {
public:
    explicit CXmlValueStore(const IURI& uri) : CFileValueStore(uri) {}

protected:
    void decode(std::string_view bytes, CValueList& values) const override;
    std::string encode(const CValueList& values) const override;
};

} // namespace kore
