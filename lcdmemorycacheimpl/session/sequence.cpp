#include "lcdmemorycacheimpl/session/sequence.h"

#include <utility>

#include "lcdmemorycacheimpl/engine/pause.h"

namespace LCD::MemoryCacheImpl {

namespace {

constexpr std::chrono::nanoseconds kIdle{59'999'999'999};

}  // namespace

Sequence::Sequence(Clock clock) : clock_(std::move(clock)), lastTouched(clock_().time_since_epoch()) {
    timerThread = std::thread(&Sequence::timerFunction, this);
}

Sequence::~Sequence() {
    running = false;
    timerThread.join();
}

void Sequence::intert(unsigned int id, const std::string& requestName) {
    LockGuard lock(sequenceMutex);
    Entry& entry = entries[id];
    entry.seq = static_cast<int>(++counter);
    entry.requestName = requestName;
    lastTouched = clock_().time_since_epoch();
}

int Sequence::getSeq(unsigned int id) {
    LockGuard lock(sequenceMutex);
    const auto found = entries.find(id);
    return found == entries.end() ? 0 : found->second.seq;
}

std::string Sequence::getRequestName(unsigned int id) {
    LockGuard lock(sequenceMutex);
    const auto found = entries.find(id);
    return found == entries.end() ? std::string() : found->second.requestName;
}

void Sequence::timerFunction() {
    while (running) {
        pauseFor({1, 0});
        resetWhenIdle();
    }
}

void Sequence::resetWhenIdle() {
    LockGuard lock(sequenceMutex);
    const std::chrono::nanoseconds now = clock_().time_since_epoch();
    if (now - lastTouched > kIdle) {
        counter = 0;
        lastTouched = now;
    }
}

}  // namespace LCD::MemoryCacheImpl
