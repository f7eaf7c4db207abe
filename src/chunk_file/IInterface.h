#pragma once
// Root of the container's interfaces. Always inherited virtually, so that a class implementing
// several of them holds a single root.

namespace chf {

class IInterface {
public:
    virtual ~IInterface() = default;

protected:
    IInterface() = default;
    IInterface(const IInterface&) = default;
    IInterface& operator=(const IInterface&) = default;
};

} // namespace chf
