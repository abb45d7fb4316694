// Messages from this plug-in to all components.
#pragma once

#include <cstdint>

#include "ktp/imessagecenter.h"
#include "lcd/memorycache/constants.h"

namespace LCD::MemoryCacheImpl {

/// Posts a message without payload to all components. Any thread; the receivers hear of it later, on a thread
/// of the platform.
inline void postToComponents(ktp::IMessageCenter* center, std::uint32_t id) {
    constexpr int kAllComponents = 9;
    ktp::IMessage* message =
        center->createMessage(id, MemoryCache::constants::OBJ_MEMORYCACHE_USER_NAME, nullptr, 0, 0);
    center->postMessage(&message, kAllComponents, 0);
    center->releaseMessage(message);
}

}  // namespace LCD::MemoryCacheImpl
