#include "framework/CStringLocalizer.h"

#include "framework/CGlobalObjFactory.h"
#include "framework/CInvalidArgError.h"
#include "framework/CString.h"
#include "framework/CUTF16CharEncoding.h"
#include "framework/IMutexFactory.h"
#include "framework/IString.h"

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

// What the localizer knows at one moment. Never changed once published.
struct CStringLocalizer::CContent {
    // The tables of setString, newest first.
    std::vector<P<CTextTable>> set;
    // The language's tables, the one that answers first first.
    std::vector<P<CTextTable>> language;
    P<IStringLocalizer> fallback;

    // The first table that holds the key decides: its text, or a miss when that text is empty
    // (a later text replaces an earlier one even when it is empty).
    bool find(const void* key, uint32_t units, uint64_t hash, CTextTable::Text& text) const noexcept
    {
        for (const auto* tables : {&set, &language}) {
            for (const P<CTextTable>& table : *tables) {
                if (table->find(key, units, hash, text))
                    return text.units != 0;
            }
        }
        return false;
    }
};

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

CStringLocalizer::CStringLocalizer()
    : m_content(new CContent()), m_writeLock(createMutexFactory()->createMutex())
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
    if (fallback == this)
        throw CInvalidArgError(nullptr, "CStringLocalizer::setFallback",
                               "fallback (the localizer itself)", "CStringLocalizer");
    CMutexLock lock(*m_writeLock);
    auto next = std::make_unique<CContent>(*m_content.load());
    next->fallback = fallback;
    publish(std::move(next));
}

void CStringLocalizer::setString(const CStringArg& key, const CStringArg& text)
{
    CTextTable::CBuilder single;
    withUTF16(key.get(), [&](const void* keyUnits, uint32_t keyCount) {
        withUTF16(text.get(), [&](const void* textUnits, uint32_t textCount) {
            single.addCopy(keyUnits, keyCount, textUnits, textCount, 0);
            return 0;
        });
        return 0;
    });
    CMutexLock lock(*m_writeLock);
    auto next = std::make_unique<CContent>(*m_content.load());
    std::vector<P<CTextTable>>& set = next->set;
    set.insert(set.begin(), single.build());
    // Like a binary counter: a table is merged into the one below once it is as large, so there
    // are a logarithmic number of tables and each key is copied a logarithmic number of times.
    while (set.size() >= 2 && set[0]->getCount() >= set[1]->getCount()) {
        CTextTable::CBuilder merged;
        merged.reserve(set[0]->getCount() + set[1]->getCount());
        auto addAll = [&merged](const CTextTable& table, uint64_t rank) {
            table.forEach([&](const uint8_t* k, uint32_t kUnits, const uint8_t* t, uint32_t tUnits) {
                merged.addCopy(k, kUnits, t, tUnits, rank);
            });
        };
        addAll(*set[1], 0);
        addAll(*set[0], 1); // the newer text of a key wins
        set.erase(set.begin());
        set[0] = merged.build();
    }
    publish(std::move(next));
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
            return make<CString>(text.bytes, 2 * text.units, CString::kUnknown, false,
                                 *CUTF16CharEncoding::instance(), CString::kCopy);
        if (content.fallback)
            return content.fallback->getString(key, defaultText);
        return nullptr;
    });
    if (found)
        return found;
    // The default may borrow the caller's memory; the result must outlive the call.
    const IString& text = defaultText.get();
    return make<CString>(text.getBuffer(), text.getByteLength(), text.getLength(), false,
                         *text.getEncoding(), CString::kCopy);
}

char16_t* CStringLocalizer::copyString(const char16_t* key, const char16_t* defaultText, TextCopier copy) const
{
    if (!key)
        key = u"";
    if (!defaultText)
        defaultText = u"";
    uint32_t units = 0;
    const uint64_t hash = CTextTable::hashTerminated(key, units);
    {
        CReaderSlots::CScope reading(m_readers);
        const CContent& content = *m_content.load(std::memory_order_seq_cst);
        CTextTable::Text text;
        if (content.find(key, units, hash, text))
            return copy(text.bytes, text.units);
        if (content.fallback)
            return copyUTF16(*content.fallback->getString(CStringArg(key, units), CStringArg(defaultText)), copy);
    }
    return copy(defaultText, std::char_traits<char16_t>::length(defaultText));
}

} // namespace kore
