#include "platform/lcdcomm/session.h"

#include <algorithm>

#include "platform/ktp/knownsettings.h"

namespace lcdcomm {

Session::Session()
    : askEvery_(ktp::valueOf(ktp::kLoginEveryMs)), wait_(ktp::valueOf(ktp::kLoginWaitMs)), asking_(askEvery_) {}

void Session::setToken(const std::string& text) {
    {
        const std::lock_guard lock(mutex_);
        token_ = {text, token_.number + 1};
    }
    changed_.notify_all();
}

Token Session::token() const {
    const std::lock_guard lock(mutex_);
    return token_;
}

Token Session::await(std::uint64_t known, std::chrono::milliseconds time, const std::stop_token& stop) const {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, stop, time, [&] { return token_.number != known; });
    return token_;
}

void Session::refused(const Token& token) {
    unauthorized_.fetch_add(1, std::memory_order_relaxed);
    if (this->token().number == token.number) {
        askForLogin();
    }
}

std::optional<Token> Session::replacementOf(const Token& token, const std::stop_token& stop) {
    const auto end = Clock::now() + wait_;
    Token current = this->token();
    while (current.number == token.number || current.text.empty()) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (!ask_ || rest <= rest.zero() || stop.stop_requested()) {
            return std::nullopt;
        }
        // The login that was asked for may have failed by now.
        askForLogin();
        current = await(current.number, std::min(rest, askEvery_), stop);
    }
    resent_.fetch_add(1, std::memory_order_relaxed);
    return current;
}

void Session::askForLogin() {
    if (ask_ && asking_.due()) {
        loginsAsked_.fetch_add(1, std::memory_order_relaxed);
        ask_();
    }
}

}  // namespace lcdcomm
