// What a plug-in is given by the platform.
#pragma once

namespace ktp {

class IPlatform {
public:
    /// The interface of the component that the configuration binds to `lookupName`, or null. The address is
    /// that of the component object, whose first base is its interface. Any thread. The platform keeps
    /// ownership; the pointer is valid until the component got its stop message.
    virtual void* findComponent(const char* lookupName) = 0;

protected:
    ~IPlatform() = default;
};

}  // namespace ktp
