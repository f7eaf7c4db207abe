#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutexFactory.h"

namespace kore::win32 {

class CMutexFactory : public CObject, public IMutexFactory {
public:
    P<IMutex> createMutex() override;
    P<IMutex> createGlobalMutex(const CStringArg& name) override;
};

} // namespace kore::win32
