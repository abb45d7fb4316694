#include "platform/ktp/messagecenter.h"

#include <pthread.h>

#include <algorithm>
#include <future>

#include "kt/log.h"
#include "platform/ktp/hostmessages.h"

namespace ktp {

namespace {

constexpr std::size_t kMostQueued = 65'536;

// Why a component couldn't handle a message; empty when it could.
std::string tell(IMessageHandler& component, const IMessage& message) {
    try {
        const int result = component.handleMessage(&message);
        return result == 0 ? std::string() : fmt::format("it answered {}", result);
    } catch (const std::exception& error) {
        return error.what();
    }
}

void tellOrLog(IMessageHandler& component, const IMessage& message) {
    const std::string problem = tell(component, message);
    if (!problem.empty()) {
        KT_WARN("a component couldn't handle message {:#x}: {}", message.id(), problem);
    }
}

}  // namespace

void MessageCenter::start() {
    thread_ = std::thread([this] {
        pthread_setname_np(pthread_self(), "ktp-messages");
        serve();
    });
}

void MessageCenter::stop() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

std::string MessageCenter::run(IMessageHandler& component) {
    std::string problem;
    onThread([&] {
        running_.push_back(&component);
        problem = tell(component, Message(kSystemRun));
    });
    return problem;
}

void MessageCenter::stop(IMessageHandler& component) {
    onThread([&] {
        tellOrLog(component, Message(kSystemStop));
        running_.erase(std::remove(running_.begin(), running_.end(), &component), running_.end());
    });
}

void MessageCenter::tellAll(std::uint32_t id) {
    onThread([&] { deliver(Message(id)); });
}

IMessage* MessageCenter::createMessage(std::uint32_t id, const char* sender, const void* data, std::uint32_t dataSize,
                                       std::uint32_t flags) {
    const auto* bytes = static_cast<const std::byte*>(data);
    return new Message(id, sender == nullptr ? "" : sender,
                       bytes == nullptr ? std::vector<std::byte>{} : std::vector(bytes, bytes + dataSize), flags);
}

void MessageCenter::releaseMessage(IMessage* message) { delete static_cast<Message*>(message); }

void MessageCenter::postMessage(IMessage** message, int /*target*/, int /*flags*/) {
    if (message == nullptr || *message == nullptr) {
        return;
    }
    std::function<void()> delivery = [this, copy = *static_cast<Message*>(*message)] { deliver(copy); };
    bool firstDropped = false;
    {
        const std::lock_guard lock(mutex_);
        const bool full = tasks_.size() >= kMostQueued;
        if (!full && !closed_) {
            tasks_.push_back(std::move(delivery));
        }
        firstDropped = full && !overflowing_;
        overflowing_ = full;
    }
    if (firstDropped) {
        KT_WARN("{} messages wait for delivery, further ones are dropped, the first is {:#x}", kMostQueued,
                (*message)->id());
    }
    wake_.notify_one();
}

// Message thread.
void MessageCenter::serve() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return closed_ || !tasks_.empty(); });
        if (tasks_.empty()) {
            return;
        }
        std::function<void()> task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        task = nullptr;
        lock.lock();
    }
}

// Host's thread.
void MessageCenter::onThread(const std::function<void()>& task) {
    // Shared, since the thread still holds the job when the result is there.
    const auto job = std::make_shared<std::packaged_task<void()>>(task);
    std::future<void> done = job->get_future();
    {
        const std::lock_guard lock(mutex_);
        tasks_.emplace_back([job] { (*job)(); });
    }
    wake_.notify_one();
    done.get();
}

// Message thread.
void MessageCenter::deliver(const IMessage& message) {
    for (IMessageHandler* component : running_) {
        tellOrLog(*component, message);
    }
}

}  // namespace ktp
