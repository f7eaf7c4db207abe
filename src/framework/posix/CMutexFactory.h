#pragma once

#include "framework/CObject.h"
#include "framework/IMutexFactory.h"

namespace kore::posix {

class CMutexFactory : public CObject, public IMutexFactory {
public:
    P<IMutex> createMutex() override;
    P<IMutex> createGlobalMutex(const CStringArg& name) override;
};

} // namespace kore::posix
