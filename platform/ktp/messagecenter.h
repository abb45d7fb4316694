// The message centre: the one thread on which components get their messages.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ktp/imessagecenter.h"

namespace ktp {

/// A message with its payload. Components of the program itself may cast to it.
class Message final : public IMessage {
public:
    explicit Message(std::uint32_t id) : id_(id) {}
    Message(std::uint32_t id, std::string sender, std::vector<std::byte> data, std::uint32_t flags)
        : id_(id), sender_(std::move(sender)), data_(std::move(data)), flags_(flags) {}

    std::uint32_t id() const override { return id_; }
    const std::string& sender() const { return sender_; }
    const std::vector<std::byte>& data() const { return data_; }
    std::uint32_t flags() const { return flags_; }

private:
    std::uint32_t id_;
    std::string sender_;
    std::vector<std::byte> data_;
    std::uint32_t flags_ = 0;
};

/// Everything that components are told passes through one queue and one thread: the messages that are
/// posted, and the system's own, for which the host's thread waits. So a component never gets two messages
/// at once, none before its system run and none after its system stop, and no lock is held meanwhile.
class MessageCenter final : public IMessageCenter {
public:
    ~MessageCenter() { stop(); }

    // The host's thread, never a component.
    void start();
    /// Delivers what is queued and joins. What is posted later is dropped.
    void stop();
    /// System run for `component`, which gets posted messages from now on. Why it refused; empty when it runs.
    std::string run(IMessageHandler& component);
    /// System stop for `component`, its last message.
    void stop(IMessageHandler& component);
    /// Returns when all that was posted before has been delivered. Any thread but a component's.
    void await() {
        onThread([] {});
    }
    /// The message `id` for every running component. Returns when all have had it.
    void tellAll(std::uint32_t id);

    // Any thread.
    IMessage* createMessage(std::uint32_t id, const char* sender, const void* data, std::uint32_t dataSize,
                            std::uint32_t flags) override;
    void releaseMessage(IMessage* message) override;
    void postMessage(IMessage** message, int target, int flags) override;

private:
    void serve();
    void onThread(const std::function<void()>& task);
    void deliver(const IMessage& message);

    std::thread thread_;
    std::vector<IMessageHandler*> running_;  // message thread only

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> tasks_;  // guarded by mutex_
    bool closed_ = false;                      // guarded by mutex_
    bool overflowing_ = false;                 // guarded by mutex_
};

}  // namespace ktp
