#include "framework/text/CStringLocalizer.h"

#include "framework/errors/CInvalidArgError.h"
#include "framework/objects/CGlobalObjFactory.h"
#include "framework/sync/IMutexFactory.h"
#include "framework/text/CString.h"
#include "framework/text/CUTF16CharEncoding.h"
#include "framework/text/IString.h"

#include <cstring>
#include <mutex>
#include <string>
#include <utility>

namespace kore {

namespace {

// The process-wide localizer, set once when it is created. Its own reference is never given
// back: a look-up running while the process exits finds the localizer and the texts it holds
// however far the factory's teardown has gone. Leak checkers see it from this global.
constinit std::atomic<const IStringLocalizer*> s_lasting{nullptr};

P<IStringLocalizer> create()
{
    P<CStringLocalizer> made = make<CStringLocalizer>();
    made->addRef();
    s_lasting.store(made.get(), std::memory_order_release);
    return made;
}

// `use(units, count)` on the UTF-16 units of `text`: a UTF-16 string's own bytes, no copy.
template <class F>
auto withUTF16(const IString& text, const F& use)
{
    if (text.getEncoding()->getId() == CUTF16CharEncoding::kId)
        return use(static_cast<const void*>(text.getBuffer()), text.getByteLength() / 2);
    const std::u16string converted = text.toU16();
    return use(static_cast<const void*>(converted.data()), static_cast<uint32_t>(converted.size()));
}

} // namespace

char16_t* copyUTF16(const IString& text, TextCopier copy)
{
    return withUTF16(text, [copy](const void* units, uint32_t count) { return copy(units, count); });
}

// The texts of setString: an open-addressing hash table of immutable entries that the writer
// (one at a time, under the localizer's write lock) changes in place while readers look keys up
// without locks. A slot only ever goes from empty to an entry, or from an entry to a newer entry
// of the same key, so a reader's probe sees the old or the new text of a key and never loses
// one. What a reader may still hold (a replaced entry, the slot array before a growth) is kept as
// garbage until the writer has waited for the readers, which it does once the garbage is as
// large as the table: one set costs a constant amortised time, with no system call.
class CStringLocalizer::CSetTexts {
public:
    CSetTexts() : m_slots(new Slots(16)) {}
    ~CSetTexts()
    {
        // In the order they were made: freeing in slot (hash) order was a cache miss per entry,
        // most of the cost of a large table.
        for (const Entry* e : m_live)
            ::operator delete(const_cast<Entry*>(e));
        delete m_slots.load(std::memory_order_relaxed);
        reclaim();
    }
    CSetTexts(const CSetTexts&) = delete;
    CSetTexts& operator=(const CSetTexts&) = delete;

    bool find(const void* key, uint32_t units, uint64_t hash, CTextTable::Text& text) const noexcept
    {
        const Slots* slots = m_slots.load(std::memory_order_seq_cst);
        for (size_t i = start(hash, slots->mask);; i = (i + 1) & slots->mask) {
            const Entry* e = slots->slot[i].entry.load(std::memory_order_seq_cst);
            if (!e)
                return false;
            if (e->hash == hash && e->keyUnits == units && std::memcmp(e->units(), key, 2 * size_t(units)) == 0) {
                text = {reinterpret_cast<const uint8_t*>(e->units() + units), e->textUnits};
                return true;
            }
        }
    }

    // Adds or replaces the text of the key. The writer only.
    void set(const void* key, uint32_t keyUnits, const void* text, uint32_t textUnits)
    {
        const uint64_t hash = CTextTable::hash(key, keyUnits);
        const size_t bytes = sizeof(Entry) + 2 * (size_t(keyUnits) + textUnits);
        std::unique_ptr<Entry, Deleter> entry(static_cast<Entry*>(::operator new(bytes)));
        entry->hash = hash;
        entry->keyUnits = keyUnits;
        entry->textUnits = textUnits;
        std::memcpy(entry->units(), key, 2 * size_t(keyUnits));
        std::memcpy(entry->units() + keyUnits, text, 2 * size_t(textUnits));

        roomForOneMore(m_retired);
        roomForOneMore(m_live);
        Slots* slots = m_slots.load(std::memory_order_relaxed);
        if (2 * (m_count + 1) > slots->mask + 1)
            slots = grow(slots);
        for (size_t i = start(hash, slots->mask);; i = (i + 1) & slots->mask) {
            Slot& slot = slots->slot[i];
            const Entry* e = slot.entry.load(std::memory_order_relaxed);
            if (!e) {
                entry->live = m_live.size();
                m_live.push_back(entry.get()); // reserved above
                slot.hash = hash;
                slot.entry.store(entry.release(), std::memory_order_seq_cst);
                ++m_count;
                return;
            }
            if (slot.hash == hash && e->keyUnits == keyUnits &&
                std::memcmp(e->units(), key, 2 * size_t(keyUnits)) == 0) {
                entry->live = e->live;
                m_live[e->live] = entry.get();
                slot.entry.store(entry.release(), std::memory_order_seq_cst);
                m_retired.push_back(e); // reserved above
                ++m_garbage;
                return;
            }
        }
    }

    // True when enough is kept for readers that the writer should wait for them and reclaim().
    bool wantsReclaim() const noexcept { return m_garbage > m_count + 64; }
    // Frees the garbage; only once no reader can hold any of it.
    void reclaim() noexcept
    {
        for (const Entry* e : m_retired)
            ::operator delete(const_cast<Entry*>(e));
        m_retired.clear();
        m_oldSlots.clear();
        m_garbage = 0;
    }

private:
    struct Entry {
        uint64_t hash;
        uint32_t keyUnits;
        uint32_t textUnits;
        // Its place in m_live; the writer's alone.
        size_t live;
        // The key's units, then the text's.
        char16_t* units() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
        const char16_t* units() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
    };
    struct Deleter {
        void operator()(Entry* e) const noexcept { ::operator delete(e); }
    };
    // The entry's hash beside it, for the writer alone (readers never read it), so that probing
    // past other keys and growing touch no entry: at 100,000 keys each entry read is a cache miss.
    struct Slot {
        std::atomic<const Entry*> entry{nullptr};
        uint64_t hash = 0;
    };
    struct Slots {
        explicit Slots(size_t count) : mask(count - 1), slot(new Slot[count]()) {}
        size_t mask;
        std::unique_ptr<Slot[]> slot;
    };

    // So that the push_back after the table changed cannot throw; doubling, since reserve(size + 1)
    // reallocates on every call.
    static void roomForOneMore(std::vector<const Entry*>& v)
    {
        if (v.size() == v.capacity())
            v.reserve(2 * v.size() + 16);
    }

    static size_t start(uint64_t hash, size_t mask) noexcept { return static_cast<size_t>(hash ^ (hash >> 32)) & mask; }

    // Twice the slots, every entry placed again; the old array stays for the readers on it.
    Slots* grow(Slots* old)
    {
        auto bigger = std::make_unique<Slots>(2 * (old->mask + 1));
        m_oldSlots.reserve(m_oldSlots.size() + 1);
        for (size_t i = 0; i <= old->mask; ++i) {
            const Slot& from = old->slot[i];
            const Entry* e = from.entry.load(std::memory_order_relaxed);
            if (!e)
                continue;
            size_t at = start(from.hash, bigger->mask);
            while (bigger->slot[at].entry.load(std::memory_order_relaxed))
                at = (at + 1) & bigger->mask;
            bigger->slot[at].hash = from.hash;
            bigger->slot[at].entry.store(e, std::memory_order_relaxed);
        }
        m_slots.store(bigger.get(), std::memory_order_seq_cst);
        m_oldSlots.emplace_back(old); // reserved above
        m_garbage += old->mask + 1;
        return bigger.release();
    }

    std::atomic<Slots*> m_slots;
    size_t m_count = 0;
    // The entries in the table, in the order they were added.
    std::vector<const Entry*> m_live;
    std::vector<const Entry*> m_retired;
    std::vector<std::unique_ptr<Slots>> m_oldSlots;
    size_t m_garbage = 0;
};

// What the localizer knows at one moment. Never changed once published, except for the texts of
// setString, which change in place (CSetTexts).
struct CStringLocalizer::CContent {
    // The texts of setString; shared with the content that replaces this one, unless that drops
    // them (clear, setTexts).
    std::shared_ptr<CSetTexts> set = std::make_shared<CSetTexts>();
    // The language's tables, the one that answers first first.
    std::vector<P<CTextTable>> language;
    P<IStringLocalizer> fallback;

    // The texts of setString answer first, then the first table that holds the key: its text, or
    // a miss when that text is empty (a later text replaces an earlier one even when it is empty).
    // `holder` learns which language table answered (none for a text of setString).
    bool find(const void* key, uint32_t units, uint64_t hash, CTextTable::Text& text,
              const CTextTable** holder = nullptr) const noexcept
    {
        if (set->find(key, units, hash, text))
            return text.units != 0;
        for (const P<CTextTable>& table : language) {
            if (table->find(key, units, hash, text)) {
                if (holder)
                    *holder = table.get();
                return text.units != 0;
            }
        }
        return false;
    }
};

namespace {

std::atomic<CStringLocalizer::MissResolver> g_missResolver{nullptr};

} // namespace

void CStringLocalizer::setMissResolver(MissResolver resolver) noexcept
{
    g_missResolver.store(resolver);
}

P<IStringLocalizer>& CStringLocalizer::instance()
{
    return CGlobalObjFactory::accessor<IStringLocalizer, &create>();
}

const IStringLocalizer& CStringLocalizer::forLookups()
{
    if (const IStringLocalizer* lasting = s_lasting.load(std::memory_order_acquire))
        return *lasting;
    return *instance();
}

CStringLocalizer::CStringLocalizer() : m_content(new CContent()), m_writeLock(createMutexFactory()->createMutex())
{
}

CStringLocalizer::~CStringLocalizer()
{
    delete m_content.load();
}

void CStringLocalizer::publish(std::unique_ptr<const CContent> next)
{
    std::unique_ptr<const CContent> old(m_content.exchange(next.release(), std::memory_order_seq_cst));
    m_readers.waitForReaders();
}

void CStringLocalizer::clear()
{
    CMutexLock lock(*m_writeLock);
    auto next = std::make_unique<CContent>();
    next->fallback = m_content.load()->fallback;
    publish(std::move(next));
}

void CStringLocalizer::setFallback(IStringLocalizer* fallback)
{
    // One chain is checked and changed at a time, so two calls cannot close a cycle between
    // them (A -> B here while B -> A there).
    static std::mutex chains;
    const std::lock_guard<std::mutex> chain(chains);
    for (P<IStringLocalizer> next(fallback); next; next = next->getFallback()) {
        if (next.get() == this)
            throw CInvalidArgError(nullptr, "CStringLocalizer::setFallback",
                                   "fallback (leads back to the localizer itself)", "CStringLocalizer");
    }
    CMutexLock lock(*m_writeLock);
    auto next = std::make_unique<CContent>(*m_content.load());
    next->fallback = fallback;
    publish(std::move(next));
}

P<IStringLocalizer> CStringLocalizer::getFallback() const
{
    CReaderSlots::CScope reading(m_readers);
    return m_content.load(std::memory_order_seq_cst)->fallback;
}

void CStringLocalizer::setString(const CStringArg& key, const CStringArg& text)
{
    withUTF16(key.get(), [&](const void* keyUnits, uint32_t keyCount) {
        withUTF16(text.get(), [&](const void* textUnits, uint32_t textCount) {
            CMutexLock lock(*m_writeLock);
            CSetTexts& set = *m_content.load()->set;
            set.set(keyUnits, keyCount, textUnits, textCount);
            if (set.wantsReclaim()) {
                m_readers.waitForReaders();
                set.reclaim();
            }
            return 0;
        });
        return 0;
    });
}

void CStringLocalizer::setTexts(const std::vector<P<CTextTable>>& tables)
{
    auto next = std::make_unique<CContent>();
    next->language.assign(tables.rbegin(), tables.rend());
    CMutexLock lock(*m_writeLock);
    next->fallback = m_content.load()->fallback;
    publish(std::move(next));
}

P<IString> CStringLocalizer::getString(const CStringArg& key, const CStringArg& defaultText) const
{
    P<IString> found = withUTF16(key.get(), [&](const void* units, uint32_t count) -> P<IString> {
        const uint64_t hash = CTextTable::hash(units, count);
        CReaderSlots::CScope reading(m_readers);
        const CContent& content = *m_content.load(std::memory_order_seq_cst);
        CTextTable::Text text;
        if (content.find(units, count, hash, text))
            return make<CString>(text.bytes, 2 * text.units, CString::kUnknown, false, *CUTF16CharEncoding::instance(),
                                 CString::kCopy);
        if (content.fallback)
            return content.fallback->getString(key, defaultText);
        return nullptr;
    });
    if (found)
        return found;
    // The default may borrow the caller's memory; the result must outlive the call.
    const IString& text = defaultText.get();
    return make<CString>(text.getBuffer(), text.getByteLength(), text.getLength(), false, *text.getEncoding(),
                         CString::kCopy);
}

char16_t* CStringLocalizer::copyString(const char16_t* key, const char16_t* defaultText, TextCopier copy) const
{
    if (!key)
        key = u"";
    if (!defaultText)
        defaultText = u"";
    struct CContentLookup final : CLookup {
        explicit CContentLookup(const CContent& content) : content(content) {}
        bool find(const char16_t* k, uint32_t n, CTextTable::Text& text,
                  const CTextTable** table) const noexcept override
        {
            return content.find(k, n, CTextTable::hash(k, n), text, table);
        }
        const CContent& content;
    };
    uint32_t units = 0;
    const uint64_t hash = CTextTable::hashTerminated(key, units);
    {
        CReaderSlots::CScope reading(m_readers);
        const CContent& content = *m_content.load(std::memory_order_seq_cst);
        CTextTable::Text text;
        if (content.find(key, units, hash, text))
            return copy(text.bytes, text.units);
        char16_t* answer = nullptr;
        if (MissResolver resolve = g_missResolver.load(std::memory_order_relaxed);
            resolve && resolve(key, units, defaultText, CContentLookup(content), copy, answer))
            return answer;
        if (content.fallback)
            return copyUTF16(*content.fallback->getString(CStringArg(key, units), CStringArg(defaultText)), copy);
    }
    return copy(defaultText, std::char_traits<char16_t>::length(defaultText));
}

} // namespace kore
