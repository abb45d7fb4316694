// The numbers of the panel's own changes.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include "lcd/memorycache/isequence.h"
#include "lcdmemorycacheimpl/engine/mutex.h"

namespace LCD::MemoryCacheImpl {

/// Takes no messages: its thread runs from construction to destruction, which may take a second.
class Sequence final : public MemoryCache::ISequence {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    Sequence() : Sequence(&std::chrono::steady_clock::now) {}
    explicit Sequence(Clock clock);
    ~Sequence() override;

    void intert(unsigned int id, const std::string& requestName) override;
    int getSeq(unsigned int id) override;
    std::string getRequestName(unsigned int id) override;

private:
    struct Entry {
        int seq = 0;
        std::string requestName;
    };

    void timerFunction();
    /// Starts the numbers again after a minute in which nobody drew one. Entries stay.
    void resetWhenIdle();

    const Clock clock_;
    std::map<std::uint32_t, Entry> entries LCD_GUARDED_BY(sequenceMutex);
    Mutex sequenceMutex;  // a leaf: nothing else is taken while it is held
    std::atomic<std::uint32_t> counter{0};
    std::chrono::nanoseconds lastTouched LCD_GUARDED_BY(sequenceMutex);
    std::thread timerThread;
    std::atomic<bool> running{true};
};

}  // namespace LCD::MemoryCacheImpl
