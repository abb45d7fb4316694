// How a program waits for its end.
#pragma once

#include <chrono>
#include <csignal>

namespace ktp {

/// Blocks SIGINT, SIGTERM and SIGPIPE in this thread and in all threads that it starts from now on: made
/// before the first of them. Puts the old mask back in the end, when all those threads have ended.
class SignalWait {
public:
    SignalWait();
    SignalWait(const SignalWait&) = delete;
    SignalWait& operator=(const SignalWait&) = delete;
    ~SignalWait();

    /// Waits for SIGINT or SIGTERM. The signal's number.
    int wait();
    /// True when one of them came before `time` had passed.
    bool waitFor(std::chrono::milliseconds time);

private:
    sigset_t ends_;
    sigset_t before_;
};

}  // namespace ktp
