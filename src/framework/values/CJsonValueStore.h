#pragma once

#include "framework/values/CFileValueStore.h"

namespace kore {

// A value list in a JSON file: the file is one object, a member per key, written pretty (tabs)
// in UTF-8. Nested value lists are nested objects and read back as nested value lists; arrays
// are CVariantArray, whose objects read back as CVariantMap. Numbers, strings, true, false and
// null are the variants the JSON parser makes. Control characters in strings are written as
// "\u" escapes and doubles with all the digits they need, so that every value reads back; a
// list holding an infinity or NaN is not written (CInvalidArgError).
class CJsonValueStore : public CFileValueStore {
public:
    explicit CJsonValueStore(const IURI& uri) : CFileValueStore(uri) {}

protected:
    void decode(std::string_view bytes, CValueList& values) const override;
    std::string encode(const CValueList& values) const override;
};

} // namespace kore
