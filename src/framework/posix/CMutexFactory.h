#pragma once

#include "framework/objects/CObject.h"
#include "framework/sync/IMutexFactory.h"

namespace kore::posix {

class CMutexFactory : public CObject, public IMutexFactory {
public:
    P<IMutex> createMutex() override;
    P<IMutex> createGlobalMutex(const CStringArg& name) override;
};

} // namespace kore::posix
