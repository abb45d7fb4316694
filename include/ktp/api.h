// A plug-in's way to the platform.
#pragma once

#include <cstdint>

#include "ktp/iplatform.h"

namespace ktp {

/// Holds the platform pointer that `pluginit` was given. There is one record in each plug-in.
class api {
public:
    IPlatform* platform = nullptr;
    std::uintptr_t reserved[2] = {};

    static api& get() {
        static api record;
        return record;
    }

    /// The component bound to `lookupName` as its first base `Interface`; null when there is none or when
    /// `pluginit` has not run. Any thread.
    template <class Interface>
    Interface* find(const char* lookupName) const {
        return platform == nullptr ? nullptr : static_cast<Interface*>(platform->findComponent(lookupName));
    }
};

}  // namespace ktp
