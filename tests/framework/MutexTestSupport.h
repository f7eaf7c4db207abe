#pragma once
// What the mutex tests need from the platform beyond the mutexes themselves.

#include <string>

namespace kore_test {

// Removes a global mutex name left in the system by a test (a no-op where, as on Windows, the
// name disappears with its last handle).
void removeGlobalMutexName(const std::string& name);

} // namespace kore_test
