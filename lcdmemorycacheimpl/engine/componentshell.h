// What the shells of all components share: ownership, start, stop, the messages that make a mirror dirty.
#pragma once

#include <cstdint>
#include <string>

#include "ktp/imessage.h"
#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/forwards.h"

namespace LCD::MemoryCacheImpl {

/// The messages on which a shell marks its mirror dirty.
template <std::uint32_t... Ids>
struct DirtyOn {
    static constexpr bool contains([[maybe_unused]] std::uint32_t id) { return ((id == Ids) || ...); }
};
using DirtyOnTokenCleared = DirtyOn<MemoryCache::constants::MSG_TOKEN_CLEARED>;
using DirtyOnTokenAndData =
    DirtyOn<MemoryCache::constants::MSG_TOKEN_CLEARED, MemoryCache::constants::MSG_DEVICE_DATA_REPLACED>;

/// What follows a change that the device didn't take: nothing but its own callback.
struct NoFeedback {
    template <class Getter, class Setter>
    static void connect(Getter&, Setter&) {}
};
/// ... or a delivery of the unchanged mirror to all subscribers of the type, by which the pages fall back to it.
struct RedeliverOnFailure {
    template <class Getter, class Setter>
    static void connect(Getter& getter, Setter& setter) {
        setter.setFailedCallback = [&getter](const std::string& name, auto type, auto key) {
            getter.notifyCacheChanged(name, type, key);
        };
    }
};
/// ... the same, for a getter whose posts carry data of their own.
struct RedeliverOuterOnFailure {
    template <class Getter, class Setter>
    static void connect(Getter& getter, Setter& setter) {
        setter.setFailedCallback = [&getter](const std::string& name, auto type, auto key) {
            getter.notifyCacheChangedOuter(name, type, key);
        };
    }
};

/// In place of a setter.
struct NoSetter {
    void onSystemRunHandle() {}
    void startSamplingTask() {}
    void stopSamplingTask() {}
};
/// In place of a getter.
struct NoGetter {
    void onSystemRunHandle() {}
    void setCacheDirty() {}
    void startReloadTask() {}
    void stopReloadTask() {}
};

/// The class of a component derives from its own instance. `Interface` is the first base, as the platform
/// expects. Messages come on the platform's thread; a stop waits for the requests that run.
template <class Interface, class Getter, class Setter = NoSetter, class Dirty = DirtyOnTokenAndData,
          class Feedback = NoFeedback>
class ComponentShell : public Forwards<Interface, Getter, Setter>, public ktp::IMessageHandler {
public:
    int handleMessage(const ktp::IMessage* message) override {
        const std::uint32_t id = message->id();
        if (id == ktp::kSystemRun) {
            run();
        } else if (id == ktp::kSystemStop) {
            this->getter->stopReloadTask();
            this->setter->stopSamplingTask();
        } else if (Dirty::contains(id)) {
            this->getter->setCacheDirty();
        }
        return 0;
    }

private:
    void run() {
        this->getter->onSystemRunHandle();
        this->setter->onSystemRunHandle();
        Feedback::connect(*this->getter, *this->setter);
        this->getter->startReloadTask();
        this->setter->startSamplingTask();
    }
};

}  // namespace LCD::MemoryCacheImpl
