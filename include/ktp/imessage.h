// Messages that the platform sends to components.
#pragma once

#include <cstdint>

namespace ktp {

/// Sent to a component once all components exist: look up peers, start threads.
inline constexpr std::uint32_t kSystemRun = 0xFFFF0001;
/// Sent before a component is deleted: end and join all threads.
inline constexpr std::uint32_t kSystemStop = 0xFFFFFFFE;

/// One message. Owned by its sender; valid during `handleMessage` only.
class IMessage {
public:
    /// The message's id: `kSystemRun`, `kSystemStop` or an application's own.
    virtual std::uint32_t id() const = 0;

protected:
    ~IMessage() = default;
};

/// The second base of every component that takes messages.
class IMessageHandler {
public:
    /// Called on a platform thread, one message at a time for each component. Blocks the sender until it
    /// returns. Unknown ids are ignored. The result is 0.
    virtual int handleMessage(IMessage const* message) = 0;

protected:
    ~IMessageHandler() = default;
};

}  // namespace ktp
