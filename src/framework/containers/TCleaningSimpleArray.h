#pragma once
// A TSimpleArray that may be changed while it is being walked (see
// CCleaningSimpleArrayTemplateBase). Made for pointer-like elements: a slot is empty when its
// element tests false (a null pointer), and an emptied slot holds a default (null) value.
//
// Construction: the grow step of the contained array and whether the end of the outermost walk
// cleans the empty slots away (else call clean()). Destroying the cleaning array destroys the
// contained array and so its elements.

#include "framework/containers/CCleaningSimpleArrayTemplateBase.h"
#include "framework/containers/TSimpleArray.h"

#include <utility>

namespace kore {

template <class E>
class TCleaningSimpleArray : public CCleaningSimpleArrayTemplateBase {
public:
    using ElementType = E;

    explicit TCleaningSimpleArray(int32_t growStep = CSimpleArrayTemplateBase::kDefaultGrowStep, bool autoClean = true)
        : CCleaningSimpleArrayTemplateBase(make<TSimpleArray<E>>(growStep), autoClean)
    {
    }

    // Appends; returns the slot's index.
    int32_t add(const E& element) { return array().add(element); }
    // The element in a slot (empty slots give a default value).
    const E& get(int32_t index) const { return array()[index]; }
    // Index of the first slot holding `element`, or -1.
    int32_t indexOf(const E& element) const requires std::equality_comparable<E> { return array().indexOf(element); }
    // Index of the first slot whose element satisfies `match`, or -1.
    template <class Match>
    int32_t findIf(Match&& match) const
    {
        const TSimpleArray<E>& a = array();
        for (int32_t i = 0; i < a.getCount(); ++i) {
            if (!isEmpty(a.data()[i]) && match(a.data()[i]))
                return i;
        }
        return -1;
    }

    // Calls `visit(element)` for every non-empty slot that existed when the walk began. Each
    // element is copied out first, so a strong element stays alive while it is visited even if
    // the visit removes it.
    template <class Visit>
    void forEach(Visit&& visit)
    {
        Walk walk(*this);
        for (int32_t i = 0; i < walk.end(); ++i) {
            E element = array().data()[i];
            if (!isEmpty(element))
                visit(element);
        }
    }

protected:
    bool isEmptyAt(int32_t index) const noexcept override { return isEmpty(array().data()[index]); }
    void emptyAt(int32_t index) noexcept override { array().data()[index] = E(); }

private:
    static bool isEmpty(const E& element) noexcept { return !static_cast<bool>(element); }

    TSimpleArray<E>& array() noexcept { return static_cast<TSimpleArray<E>&>(*m_array); }
    const TSimpleArray<E>& array() const noexcept { return static_cast<const TSimpleArray<E>&>(*m_array); }
};

} // namespace kore
