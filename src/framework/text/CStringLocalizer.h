#pragma once
// The process's string localizer (one per process, from the global object factory). Keys compare
// exactly, unit for unit. A key whose text is empty counts as missing, so a language file cannot
// blank a text out: the default (or the fallback's text) shows instead.
//
// Look-ups take no lock and write no shared memory: the content is one immutable object that
// readers reach through an atomic pointer, counting themselves in per-thread reader slots. A
// change builds a new content, swaps it in, waits until no reader can hold the old one and frees
// it; changes are serialised by a mutex that readers never touch. So a look-up sees the old or
// the new text of a key, never a torn or freed one, and a language switch costs readers nothing.
// The one part changed in place is the table of setString's texts, whose slots move atomically
// from empty to an entry or from one entry of a key to a newer one (CSetTexts).
//
// The process-wide localizer is never destroyed: look-ups may still run on other threads while
// the process exits and the factory destroys its services, and they must find their texts.

#include "framework/objects/CObject.h"
#include "framework/objects/P.h"
#include "framework/sync/CReaderSlots.h"
#include "framework/sync/IMutex.h"
#include "framework/text/IStringLocalizer.h"

#include <atomic>
#include <memory>

namespace kore {

class CStringLocalizer : public CObject, public IStringLocalizer {
public:
    // The process-wide localizer, created empty on first use.
    static P<IStringLocalizer>& instance();
    // The same localizer for look-ups: once it exists, reached without the factory, and valid
    // until the process ends, also after unload.
    static const IStringLocalizer& forLookups();

    // What a miss resolver may read: the content in which the key was missed, so that whatever it
    // answers belongs to the same language. `table` receives the table that holds the key.
    class CLookup {
    public:
        virtual bool find(const char16_t* key, uint32_t units, CTextTable::Text& text,
                          const CTextTable** table) const noexcept = 0;

    protected:
        ~CLookup() = default;
    };
    // Answers a key that no table holds but that names a text of theirs in another way (a plural
    // form: the key carries the count). Returns false to leave the key to the fallback and the
    // default; true with `answer` made by `copy` (null when out of memory) when it answers.
    using MissResolver = bool (*)(const char16_t* key, uint32_t units, const char16_t* defaultText,
                                  const CLookup& lookup, TextCopier copy, char16_t*& answer);
    // One resolver for the process (the language layer's); copyString asks it only on a miss, so a
    // hit costs nothing more.
    static void setMissResolver(MissResolver resolver) noexcept;

    CStringLocalizer();
    ~CStringLocalizer() override;
    CStringLocalizer(const CStringLocalizer&) = delete;
    CStringLocalizer& operator=(const CStringLocalizer&) = delete;

    void clear() override;
    // Throws CInvalidArgError when `fallback` is this localizer or its chain of fallbacks leads
    // back here (every miss would recurse until the stack runs out).
    void setFallback(IStringLocalizer* fallback) override;
    P<IStringLocalizer> getFallback() const override;
    // Constant amortised time, no system call: the texts set this way live in one hash table that
    // grows by doubling and is changed in place under the write lock (readers stay lock-free).
    // They answer before the language's texts and are dropped, like everything else, by
    // setTexts and clear.
    void setString(const CStringArg& key, const CStringArg& text) override;
    // The answer is a new string (a copy of the text or of the default).
    P<IString> getString(const CStringArg& key, const CStringArg& defaultText) const override;
    void setTexts(const std::vector<P<CTextTable>>& tables) override;
    char16_t* copyString(const char16_t* key, const char16_t* defaultText, TextCopier copy) const override;

private:
    class CSetTexts;
    struct CContent;

    // Swaps `next` in and frees the old content once no reader holds it. Under m_writeLock.
    void publish(std::unique_ptr<const CContent> next);

    // Written only under m_writeLock; read by anyone inside a reader scope of m_readers.
    std::atomic<const CContent*> m_content;
    mutable CReaderSlots m_readers;
    P<IMutex> m_writeLock;
};

} // namespace kore
