#pragma once
// Keeps one framework object alive for as long as the wrapper exists.

#include "framework/objects/IBase.h"
#include "framework/objects/IInstanceWrapper.h"
#include "framework/objects/P.h"

namespace kore {

class CInstanceWrapper : public IInstanceWrapper {
public:
    explicit CInstanceWrapper(IBase* object = nullptr) { m_object = object; }
    ~CInstanceWrapper() override = default;

    void deleteThis() override { delete this; }

    IBase* get() const noexcept { return m_object.get(); }

private:
    P<IBase> m_object;
};

} // namespace kore
