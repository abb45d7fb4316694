// The session with the device: its token, and how the application is asked for another.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

#include "platform/lcdcomm/atmostevery.h"
#include "platform/lcdcomm/icommstatus.h"

namespace lcdcomm {

struct Token {
    std::string text;          ///< empty: nobody is logged in
    std::uint64_t number = 0;  ///< rises with each that is set; 0 before the first
};

/// Which token holds is decided by its number: a device may give the same text again. Any thread.
class Session {
public:
    Session();

    /// Before any component runs.
    void onLoginNeeded(std::function<void()> ask) { ask_ = std::move(ask); }

    void setToken(const std::string& text);
    Token token() const;
    /// Waits until a token with another number than `known` is set. What holds then, or when the time has passed or
    /// `stop` came.
    Token await(std::uint64_t known, std::chrono::milliseconds time, const std::stop_token& stop) const;

    /// Tells that the device doesn't take `token`: asks for a login unless another one is set already.
    void refused(const Token& token);
    /// The token with which a request goes out once more that was refused with `token`: at once when it was replaced
    /// meanwhile, else as soon as a login brings one. None when none came in time, nobody logs in, or `stop` came.
    std::optional<Token> replacementOf(const Token& token, const std::stop_token& stop);
    /// Asks the application to log in, unless it was asked a moment ago. Nothing is locked meanwhile.
    void askForLogin();

    SessionStatus status() const { return {unauthorized_, loginsAsked_, resent_}; }

private:
    using Clock = std::chrono::steady_clock;

    const std::chrono::milliseconds askEvery_;
    const std::chrono::milliseconds wait_;
    std::function<void()> ask_;  // fixed while components run
    AtMostEvery asking_;
    std::atomic<std::uint64_t> unauthorized_{0}, loginsAsked_{0}, resent_{0};

    mutable std::mutex mutex_;
    mutable std::condition_variable_any changed_;
    Token token_;  // guarded by mutex_
};

}  // namespace lcdcomm
