#pragma once
// A type-erased holder that containers can destroy without knowing what it keeps alive.

namespace kore {

class IInstanceWrapper {
public:
    virtual ~IInstanceWrapper() = default;
    virtual void deleteThis() = 0;
};

} // namespace kore
