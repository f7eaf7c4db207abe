#pragma once

#include "framework/objects/IBase.h"
#include "framework/objects/P.h"

namespace kore {

class IMutex;
class CStringArg;

class IMutexFactory : public virtual IBase {
public:
    // A new process-local, recursive mutex.
    virtual P<IMutex> createMutex() = 0;
    // A new handle on the system-wide mutex of that name, shared by every process that opens it.
    // Throws CException "Error createing global mutex <name>" when the system refuses the name.
    virtual P<IMutex> createGlobalMutex(const CStringArg& name) = 0;
};

// The mutex factory of this platform (win32/ or posix/ supplies it).
P<IMutexFactory> createMutexFactory();

} // namespace kore
