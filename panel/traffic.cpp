#include "panel/traffic.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace panel {

namespace {

using nlohmann::json;

constexpr const char* kDeviceToken = "device";  // of changes that no client made
constexpr const char* kLoginPath = "/zelto/v1/system/auth/login";
constexpr std::size_t kMostTokens = 256;
constexpr std::size_t kLongestVerdict = 4096;  // bytes; longer replies are data

// What a requester's thread has sent last, and whether a delivery has told of it.
struct LastSent {
    Sent sent;
    bool told = true;
};
thread_local LastSent lastSentHere;

// Of a reply with status 200: the code and message of one that says no.
std::string refusalIn(const std::string& reply) {
    const json envelope = reply.size() > kLongestVerdict ? json() : json::parse(reply, nullptr, false);
    const json code = envelope.is_object() ? envelope.value("code", json()) : json();
    return !code.is_number_integer() || code == 0
               ? std::string()
               : fmt::format(", code {} {}", code.dump(), envelope.value("message", json()).dump());
}

Sent sentOf(const lcdcomm::RequestSeen& request) {
    Sent sent{.name = fmt::format("{} {}", request.verb, request.path),
              .took = request.end - request.start,
              .end = request.end};
    if (!request.arrived) {
        sent.how = lcdcomm::textOf(request.how);
        return sent;
    }
    const std::string refusal =
        request.status == 200 && request.reply != nullptr ? refusalIn(*request.reply) : std::string();
    sent.how = fmt::format("status {}{}", request.status, refusal);
    sent.good = request.status == 200 && refusal.empty();
    return sent;
}

}  // namespace

std::string Origin::text() const {
    switch (by) {
        case By::ownChange:
            return "own change";
        case By::otherClient:
            return "other client";
        case By::device:
            return "report";
        case By::nobody:
            break;
    }
    return fetch.name.empty() ? "mirror" : "fetch";
}

void Traffic::addOwnToken(const std::string& token) {
    const std::lock_guard lock(mutex_);
    if (ownTokens_.size() < kMostTokens) {
        ownTokens_.insert(token);
    }
}

Sent Traffic::lastSent() { return lastSentHere.sent; }

Sent Traffic::lastLogin() const {
    const std::lock_guard lock(mutex_);
    return login_;
}

Sent Traffic::lastFetch() const {
    const std::lock_guard lock(mutex_);
    return fetch_;
}

// Requesters' threads.
void Traffic::requestEnded(const lcdcomm::RequestSeen& request) {
    lastSentHere = {sentOf(request), false};
    const std::lock_guard lock(mutex_);
    if (request.path == kLoginPath) {
        login_ = lastSentHere.sent;
    } else if (std::string_view(request.verb) == "GET") {
        fetch_ = fetches_[request.path] = lastSentHere.sent;
    }
}

// Decoder thread.
void Traffic::reportArrived(const lcdcomm::ReportSeen& report) {
    const std::lock_guard lock(mutex_);
    const By by = report.source.token == kDeviceToken          ? By::device
                  : ownTokens_.count(report.source.token) != 0 ? By::ownChange
                                                               : By::otherClient;
    reports_[report.id] = {++serial_, by, report.arrival};
}

Origin Traffic::originOf(const Component& component) {
    Origin origin;
    const std::lock_guard lock(mutex_);
    std::uint64_t& told = told_[&component];
    Clock::time_point& in = in_[&component];
    std::uint64_t newest = told;
    for (const std::uint32_t id : component.reports) {
        if (const auto found = reports_.find(id); found != reports_.end() && found->second.serial > newest) {
            newest = found->second.serial;
            origin.by = found->second.by;
            in = std::max(in, found->second.time);
        }
    }
    told = newest;
    if (!lastSentHere.told) {
        lastSentHere.told = true;
        origin.fetch = lastSentHere.sent;
    } else if (const auto found = fetches_.find(component.path); found != fetches_.end() && found->second.end > in) {
        origin.fetch = found->second;
    }
    in = origin.fetch.good ? std::max(in, origin.fetch.end) : in;
    origin.time = in;
    return origin;
}

}  // namespace panel
