#pragma once
// The process's string localizer (one per process, from the global object factory). Keys compare
// exactly (case and every character count). A key whose text is empty counts as missing, so a
// language file cannot blank a text out: the default (or the fallback's text) shows instead.
// Every operation runs under the localizer's own mutex, so look-ups may run while a language is
// being loaded; a look-up sees either the old or the new text of a key.

#include "framework/CObject.h"
#include "framework/CValueList.h"
#include "framework/IMutex.h"
#include "framework/IStringLocalizer.h"
#include "framework/P.h"

namespace kore {

class CStringLocalizer : public CObject, public IStringLocalizer {
public:
    // The process-wide localizer, created empty on first use.
    static P<IStringLocalizer>& instance();

    CStringLocalizer();
    ~CStringLocalizer() override;
    CStringLocalizer(const CStringLocalizer&) = delete;
    CStringLocalizer& operator=(const CStringLocalizer&) = delete;

    void clear() override;
    // Throws CInvalidArgError when `fallback` is this localizer (every miss would recurse).
    void setFallback(IStringLocalizer* fallback) override;
    void setString(const CStringArg& key, const CStringArg& text) override;
    // A hit returns the stored string itself (strings are immutable); a miss copies the default.
    P<IString> getString(const CStringArg& key, const CStringArg& defaultText) const override;

    // Makes `table` (keys to string values, built apart from the localizer) its whole content in
    // one step: a look-up sees either every old text or every new one, never neither.
    void replaceStrings(P<CValueList> table);

    // Number of keys held (empty texts included).
    uint32_t getCount() const;

private:
    P<CValueList> m_table;
    P<IStringLocalizer> m_fallback;
    P<IMutex> m_mutex;
};

} // namespace kore
