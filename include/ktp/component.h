// How a class becomes a component of a plug-in.
#pragma once

#include <functional>
#include <new>
#include <type_traits>

#include "ktp/imessage.h"

namespace ktp {

/// One row of a plug-in's component table.
struct ComponentInfo {
    std::function<void*()> creator;
    std::function<void(void*)> deletor;
    std::function<IMessageHandler*(void*)> getMessageHandler;
    const char* name;      ///< the component's name, unique in the process
    const char* metadata;  ///< JSON text, not read by anyone
};

/// Makes `T`, a default-constructible class whose first base is its interface, a component. The table that
/// lists the component defines `componentInfo`.
template <class T>
class ComponentTmpl {
public:
    static ComponentInfo componentInfo;

    /// A new object, or null when memory ran out.
    static void* creator() { return new (std::nothrow) T; }

    static void deletor(void* component) { delete static_cast<T*>(component); }

    /// Null for a null `component` and for a class that takes no messages.
    static IMessageHandler* getMessageHandler([[maybe_unused]] void* component) {
        if constexpr (std::is_base_of_v<IMessageHandler, T>) {
            return static_cast<T*>(component);
        } else {
            return nullptr;
        }
    }
};

}  // namespace ktp
