#include "framework/CStringLocalizer.h"

#include "framework/CGlobalObjFactory.h"
#include "framework/CInvalidArgError.h"
#include "framework/IMutexFactory.h"
#include "framework/IString.h"

#include <utility>

namespace kore {

namespace {
P<IStringLocalizer> create()
{
    return make<CStringLocalizer>();
}
} // namespace

P<IStringLocalizer>& CStringLocalizer::instance()
{
    return CGlobalObjFactory::accessor<IStringLocalizer, &create>();
}

CStringLocalizer::CStringLocalizer()
    : m_table(make<CValueList>()), m_mutex(createMutexFactory()->createMutex())
{
}

CStringLocalizer::~CStringLocalizer() = default;

void CStringLocalizer::clear()
{
    CMutexLock lock(*m_mutex);
    m_table->clear();
}

void CStringLocalizer::setFallback(IStringLocalizer* fallback)
{
    if (fallback == this)
        throw CInvalidArgError(nullptr, "CStringLocalizer::setFallback",
                               "fallback (the localizer itself)", "CStringLocalizer");
    CMutexLock lock(*m_mutex);
    // P's assignment adds the new reference before it drops the old one.
    m_fallback = fallback;
}

void CStringLocalizer::setString(const CStringArg& key, const CStringArg& text)
{
    // Hash and copy before the lock is taken: readers wait only for the table update.
    const uint32_t hash = CValueList::hashKey(key.get());
    P<IString> copy = CValueList::copyText(text.get());
    CMutexLock lock(*m_mutex);
    m_table->set(key.get(), hash, std::move(copy));
}

P<IString> CStringLocalizer::getString(const CStringArg& key, const CStringArg& defaultText) const
{
    // Hashing reads the whole key: the costliest step of a look-up, so it runs unlocked.
    const uint32_t hash = CValueList::hashKey(key.get());
    {
        CMutexLock lock(*m_mutex);
        IString* text = m_table->peekString(key.get(), hash);
        if (text && text->getLength() != 0)
            return P<IString>(text);
        if (m_fallback)
            return m_fallback->getString(key, defaultText);
    }
    // The default may borrow the caller's memory; the result must outlive the call.
    return CValueList::copyText(defaultText.get());
}

void CStringLocalizer::replaceStrings(P<CValueList> table)
{
    if (!table)
        table = make<CValueList>();
    {
        CMutexLock lock(*m_mutex);
        std::swap(m_table, table);
    }
    // The old texts are freed here, outside the lock, so that readers do not wait for it.
}

uint32_t CStringLocalizer::getCount() const
{
    CMutexLock lock(*m_mutex);
    return m_table->getCount();
}

} // namespace kore
