#pragma once
// The type-independent half of TCleaningSimpleArray: an array that may be changed while it is
// being walked. Removing an element during a walk only empties its slot (later slots keep their
// indexes, so the walk neither skips nor repeats one); the empty slots are cleaned away when
// the outermost walk ends, or on clean(). Elements added during a walk are appended and are not
// visited by walks that had already started.
//
// Not locked: the owner serialises access.

#include "framework/containers/CSimpleArrayTemplateBase.h"
#include "framework/objects/CObject.h"
#include "framework/objects/P.h"

#include <cstdint>

namespace kore {

class CCleaningSimpleArrayTemplateBase : public CObject {
public:
    CCleaningSimpleArrayTemplateBase(const CCleaningSimpleArrayTemplateBase&) = delete;
    CCleaningSimpleArrayTemplateBase& operator=(const CCleaningSimpleArrayTemplateBase&) = delete;

    // Slots in use, empty ones included until the array is cleaned.
    int32_t getCount() const noexcept { return m_array->getCount(); }
    bool isCleaningAutomatically() const noexcept { return m_autoClean; }
    bool isWalking() const noexcept { return m_walkDepth > 0; }

    // Removes the element at `index`: at once when no walk is running, else its slot is emptied
    // and cleaned later.
    void removeAt(int32_t index);
    // Removes every element (emptying every slot during a walk).
    void removeAll();
    // Drops the empty slots now; does nothing while a walk is running.
    void clean();

    // Scope of one walk; walks may nest.
    class Walk {
    public:
        explicit Walk(CCleaningSimpleArrayTemplateBase& array) : m_array(array), m_end(array.beginWalk()) {}
        ~Walk() { m_array.endWalk(); }
        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;
        // The slots that existed when the walk began.
        int32_t end() const noexcept { return m_end; }

    private:
        CCleaningSimpleArrayTemplateBase& m_array;
        int32_t m_end;
    };

protected:
    // `array` is the contained array; `autoClean` says whether the end of the outermost walk
    // cleans the empty slots away.
    CCleaningSimpleArrayTemplateBase(P<CSimpleArrayTemplateBase> array, bool autoClean);
    ~CCleaningSimpleArrayTemplateBase() override;

    virtual bool isEmptyAt(int32_t index) const noexcept = 0;
    virtual void emptyAt(int32_t index) noexcept = 0;

    int32_t beginWalk() noexcept;
    void endWalk() noexcept;

    P<CSimpleArrayTemplateBase> m_array;

private:
    int32_t m_walkDepth = 0;
    bool m_autoClean;
    bool m_hasEmptySlots = false;
};

} // namespace kore
