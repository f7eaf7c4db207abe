#pragma once
// The table from text keys ("kore.CFileNotFoundError.Desc") to the texts of the current
// language. Framework code asks it for a key together with an English default at each place of
// use, and gets the translation when one is loaded, else the default.

#include "framework/CStringArg.h"
#include "framework/IBase.h"
#include "framework/P.h"

namespace kore {

class IString;

class IStringLocalizer : public virtual IBase {
public:
    // Removes every text; a fallback stays installed.
    virtual void clear() = 0;
    // Installs the localizer that answers keys missing here (null removes it). It is called with
    // this localizer's lock held, so it must never call back into this localizer.
    virtual void setFallback(IStringLocalizer* fallback) = 0;
    // Adds the text or replaces the text of an existing key; both are copied.
    virtual void setString(const CStringArg& key, const CStringArg& text) = 0;
    // The text of `key`; when it is absent or empty, the fallback's answer, or without a
    // fallback `defaultText` unchanged. Placeholders ("%FILE%", ...) are left for the caller.
    virtual P<IString> getString(const CStringArg& key, const CStringArg& defaultText) const = 0;
};

} // namespace kore
