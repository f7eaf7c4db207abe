#pragma once

#include "framework/io/IURI.h"
#include "framework/objects/CObject.h"
#include "framework/values/CValueList.h"
#include "framework/values/IValueStore.h"

#include <string>
#include <string_view>

namespace kore {

// What every file-based value store shares: reading the whole file, loading into a fresh list
// that replaces the content of the store's list only when the file parsed, and writing a
// temporary file beside the target that replaces it only when complete. Subclasses supply the
// file format. A store belongs to one thread at a time.
class CFileValueStore : public CObject, public IValueStore {
public:
    void load() override;
    void store() override;
    P<CValueList> getValueList() const override { return m_values; }
    P<IURI> getURI() const override { return m_uri; }

protected:
    explicit CFileValueStore(const IURI& uri);

    // The values of a file's bytes, put into `values` (empty). Throws a CException when the bytes
    // are not a file of the format.
    virtual void decode(std::string_view bytes, CValueList& values) const = 0;
    // The bytes of a file holding `values`. Throws CInvalidArgError for a value the format
    // cannot hold.
    virtual std::string encode(const CValueList& values) const = 0;

private:
    P<IURI> m_uri;
    P<CValueList> m_values;
};

} // namespace kore
