#include "platform/ktp/signals.h"

#include <ctime>

namespace ktp {

SignalWait::SignalWait() {
    sigemptyset(&ends_);
    sigaddset(&ends_, SIGINT);
    sigaddset(&ends_, SIGTERM);
    sigset_t blocked = ends_;
    // A TLS connection that the other side has closed raises it in the thread that writes.
    sigaddset(&blocked, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &blocked, &before_);
}

SignalWait::~SignalWait() {
    sigset_t pending = ends_;
    sigaddset(&pending, SIGPIPE);
    const timespec now{};
    while (sigtimedwait(&pending, nullptr, &now) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int SignalWait::wait() {
    int signal = 0;
    sigwait(&ends_, &signal);
    return signal;
}

bool SignalWait::waitFor(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const std::chrono::nanoseconds rest = time - seconds;
    const timespec limit{seconds.count(), rest.count()};
    return sigtimedwait(&ends_, nullptr, &limit) > 0;
}

}  // namespace ktp
