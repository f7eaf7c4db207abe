#pragma once
// The table from text keys ("kore.CFileNotFoundError.Desc") to the texts of the current
// language. Framework code asks it for a key together with an English default at each place of
// use, and gets the translation when one is loaded, else the default.

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"
#include "framework/text/CStringArg.h"
#include "framework/text/CTextTable.h"

#include <cstddef>
#include <vector>

namespace kore {

class IString;

// Makes a caller-owned copy of `units` UTF-16 units at `text` (any alignment) in the caller's
// memory, with a terminating zero; null when out of memory.
using TextCopier = char16_t* (*)(const void* text, std::size_t units);

// `copy` applied to the UTF-16 units of `text`: a UTF-16 string's own units (unpaired
// surrogates kept), any other string converted.
char16_t* copyUTF16(const IString& text, TextCopier copy);

class IStringLocalizer : public virtual IBase {
public:
    // Removes every text; a fallback stays installed.
    virtual void clear() = 0;
    // Installs the localizer that answers keys missing here (null removes it). It is called in
    // the middle of a look-up here, so it must never call back into this localizer: a fallback
    // whose own chain of fallbacks leads back here is refused.
    virtual void setFallback(IStringLocalizer* fallback) = 0;
    // The installed fallback, or null.
    virtual P<IStringLocalizer> getFallback() const = 0;
    // Adds the text or replaces the text of an existing key; both are copied.
    virtual void setString(const CStringArg& key, const CStringArg& text) = 0;
    // The text of `key`; when it is absent or empty, the fallback's answer, or without a
    // fallback `defaultText` unchanged. Placeholders ("%FILE%", ...) are left for the caller.
    virtual P<IString> getString(const CStringArg& key, const CStringArg& defaultText) const = 0;

    // Makes the texts of `tables` the whole content in one step, as if every key and text of each
    // table, in order, had been set after a clear: of two tables with one key, the later answers.
    // A look-up meanwhile sees all old texts or all new ones.
    virtual void setTexts(const std::vector<P<CTextTable>>& tables) = 0;
    // getString for hosts: `key` and `defaultText` are zero-terminated UTF-16 (null reads as
    // empty), the default is read only when needed, and the answer goes straight into a copy
    // made by `copy` (null when it fails).
    virtual char16_t* copyString(const char16_t* key, const char16_t* defaultText, TextCopier copy) const = 0;
};

} // namespace kore
