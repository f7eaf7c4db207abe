#include "framework/containers/CFrailArrayTemplateBase.h"

#include "framework/errors/CInvalidArgError.h"

namespace kore {

// Listener lists are short and change rarely: a small grow step, and empty slots cleaned away
// as soon as the last walk over them ends.
CFrailArrayTemplateBase::CFrailArrayTemplateBase() : m_list(make<TCleaningSimpleArray<PFrail<IBase>>>(10, true))
{
}

CFrailArrayTemplateBase::~CFrailArrayTemplateBase() = default;

int32_t CFrailArrayTemplateBase::getCount() const
{
    int32_t n = 0;
    for (int32_t i = 0; i < m_list->getCount(); ++i) {
        if (m_list->get(i))
            ++n;
    }
    return n;
}

bool CFrailArrayTemplateBase::addObject(IBase* listener)
{
    if (!listener)
        throw CInvalidArgError(nullptr, "TFrailArray::add", "listener (null)", "TFrailArray");
    if (containsObject(listener))
        return false;
    m_list->add(PFrail<IBase>(listener, kFrail));
    return true;
}

bool CFrailArrayTemplateBase::removeObject(const IBase* listener)
{
    const int32_t index = m_list->findIf([listener](const PFrail<IBase>& entry) { return entry.get() == listener; });
    if (index < 0)
        return false;
    m_list->removeAt(index);
    return true;
}

bool CFrailArrayTemplateBase::containsObject(const IBase* listener) const
{
    return listener && m_list->findIf([listener](const PFrail<IBase>& entry) { return entry.get() == listener; }) >= 0;
}

void CFrailArrayTemplateBase::walk(void (*visit)(void* context, IBase& listener), void* context)
{
    // Each slot is read again before its call, so a listener removed by an earlier one in the
    // same walk (its slot emptied) is not called. The list is held for the walk: a listener may
    // drop the last reference to the object that owns this array.
    const P<TCleaningSimpleArray<PFrail<IBase>>> list = m_list;
    CCleaningSimpleArrayTemplateBase::Walk scope(*list);
    for (int32_t i = 0; i < scope.end(); ++i) {
        if (IBase* listener = list->get(i).get())
            visit(context, *listener);
    }
}

} // namespace kore
