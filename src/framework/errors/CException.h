#pragma once
// Root of every framework failure: a thrown standard exception that is also a reference-counted
// framework object, with a short general description (a title) and a full description. Texts
// are built once, in the constructor; a later change of language does not change them.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"
#include "framework/text/IString.h"

#include <exception>

namespace kore {

class CException : public std::exception, public CObject {
public:
    CException(const CStringArg& generalDescription, const CStringArg& description);
    CException(const CException& other);
    CException& operator=(const CException&) = delete;
    ~CException() override;

    // The description in the process code page.
    const char* what() const noexcept override;
    virtual P<IString> getGeneralDescription() const;
    virtual P<IString> getDescription() const;
    // A new copy of the same error (same class, same texts), owned by the caller.
    virtual P<CException> clone() const;

private:
    P<IString> m_generalDescription;
    P<IString> m_description;
    mutable P<IString> m_what;
};

// Copies a text argument into a string the error can keep (arguments may borrow caller memory).
P<IString> keepText(const CStringArg& text);
// The localised text for `key` (English default `englishDefault`) with every `placeholder`
// replaced by `value`.
P<IString> localizedWith(const CStringArg& key, const CStringArg& englishDefault, const CStringArg& placeholder,
                         const CStringArg& value);

} // namespace kore
