#pragma once

#include <cerrno>
#include <ctime>

namespace LCD::MemoryCacheImpl {

/// Sleeps for the whole time: an interrupted sleep is resumed, any other failure ends it.
inline void pauseFor(timespec time) {
    while (nanosleep(&time, &time) != 0 && errno == EINTR) {
    }
}

}  // namespace LCD::MemoryCacheImpl
