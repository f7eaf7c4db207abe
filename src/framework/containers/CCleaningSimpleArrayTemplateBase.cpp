#include "framework/containers/CCleaningSimpleArrayTemplateBase.h"

#include "framework/errors/CInvalidArgError.h"

#include <string>

namespace kore {

CCleaningSimpleArrayTemplateBase::CCleaningSimpleArrayTemplateBase(P<CSimpleArrayTemplateBase> array, bool autoClean)
    : m_array(std::move(array)), m_autoClean(autoClean)
{
}

CCleaningSimpleArrayTemplateBase::~CCleaningSimpleArrayTemplateBase() = default;

void CCleaningSimpleArrayTemplateBase::removeAt(int32_t index)
{
    if (index < 0 || index >= m_array->getCount())
        throw CInvalidArgError(
            nullptr, "TCleaningSimpleArray::removeAt",
            ("index " + std::to_string(index) + " outside 0.." + std::to_string(m_array->getCount() - 1)).c_str(),
            "TCleaningSimpleArray");
    if (m_walkDepth == 0) {
        m_array->remove(index);
        return;
    }
    emptyAt(index);
    m_hasEmptySlots = true;
}

void CCleaningSimpleArrayTemplateBase::removeAll()
{
    if (m_walkDepth == 0) {
        m_array->clear();
        return;
    }
    for (int32_t i = 0; i < m_array->getCount(); ++i)
        emptyAt(i);
    m_hasEmptySlots = true;
}

void CCleaningSimpleArrayTemplateBase::clean()
{
    if (m_walkDepth > 0)
        return;
    m_hasEmptySlots = false;
    // From the back, so that each removal moves only elements that are already checked.
    for (int32_t i = m_array->getCount() - 1; i >= 0; --i) {
        if (isEmptyAt(i))
            m_array->remove(i);
    }
}

int32_t CCleaningSimpleArrayTemplateBase::beginWalk() noexcept
{
    ++m_walkDepth;
    return m_array->getCount();
}

void CCleaningSimpleArrayTemplateBase::endWalk() noexcept
{
    if (--m_walkDepth == 0 && m_hasEmptySlots && m_autoClean)
        clean();
}

} // namespace kore
