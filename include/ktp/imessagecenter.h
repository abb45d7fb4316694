// The platform's message centre, found under "ktp_default_messagecenter".
#pragma once

#include <cstdint>

#include "ktp/imessage.h"

namespace ktp {

inline constexpr const char* kMessageCenterName = "ktp_default_messagecenter";

/// Distributes messages to all running components. Every operation may be called from any thread and none
/// blocks on a receiver.
class IMessageCenter {
public:
    /// Makes a message. `sender` is copied; the three last arguments are zero for a message without payload.
    /// The caller releases the message.
    virtual IMessage* createMessage(std::uint32_t id, const char* sender, const void* data, std::uint32_t dataSize,
                                    std::uint32_t flags) = 0;
    /// Frees a message that `createMessage` made. Null is ignored.
    virtual void releaseMessage(IMessage* message) = 0;
    /// Queues a copy of `*message`, so that the caller may release its own at once. The copy is delivered on
    /// the message centre's thread. `target` is the set of receivers (9: all components), `flags` is 0.
    virtual void postMessage(IMessage** message, int target, int flags) = 0;

protected:
    ~IMessageCenter() = default;
};

}  // namespace ktp
