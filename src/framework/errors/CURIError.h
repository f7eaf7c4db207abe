#pragma once

#include "framework/errors/CError.h"
#include "framework/io/IURI.h"

namespace kore {

// A failure that concerns one URI; stream errors are URI errors too, so every one can tell which
// resource failed.
class CURIError : public CError {
public:
    CURIError(const IURI* uri, const CStringArg& generalDescription, const CStringArg& description);
    P<CException> clone() const override;

    // The failing URI; may be null.
    virtual P<IURI> getURI() const;

    // The URI's text, or "<uri unknown>".
    static P<IString> uriText(const IURI* uri);

private:
    P<IURI> m_uri;
};

} // namespace kore
