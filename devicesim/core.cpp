#include "devicesim/core.h"

#include <fmt/format.h>

#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "devicesim/devicesim.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

Reply failure(int status, int code, std::string_view text) {
    return {.status = status, .body = envelope(code, text, nullptr)};
}

Reply httpFailure(int status, std::string_view text) { return failure(status, status, text); }

Reply refused(const Refusal& refusal) { return failure(200, static_cast<int>(refusal.failure), refusal.what()); }

}  // namespace

Core::Core(const Options& options, std::vector<Row> rows, json start)
    : table_(std::move(rows)),
      remoteControl_(options.remoteControl),
      interior_{.table = table_,
                .start = std::move(start),
                .tokens = Tokens(options.tokenLifetime, options.tokens),
                .reports = Reports(options.streams, options.streamQueue,
                                   [this](Delivery& delivery) { interior_.faults.meet(delivery, interior_); })} {
    requireStartData();
    timer_ = std::thread([this] { runAgenda(); });
}

void Core::requireStartData() const {
    const json& start = interior_.start;
    for (const Row& row : table_.rows()) {
        const std::string place(row.place.substr(0, row.place.find("/*")));
        if (!start.contains(Place(place))) {
            throw std::runtime_error(fmt::format("the start data lack {}, which {} {} needs", place,
                                                 row.verb.empty() ? "report" : row.verb,
                                                 row.verb.empty() ? fmt::format("{:x}", row.report) : row.path));
        }
    }
    for (const auto& [row, places] : table_.allReports(start)) {
        for (const Place& place : places) {
            try {
                row->body(*row, start, place);
            } catch (const json::exception& error) {
                throw std::runtime_error(fmt::format("the start data around {} do not fit report {:x}: {}",
                                                     place.to_string(), row->report, error.what()));
            }
        }
    }
}

Core::Body Core::parseBody(const std::string& text) {
    try {
        return {.value = text.empty() ? json() : parsed(text)};
    } catch (const Refusal& refusal) {
        return {.refusal = refusal};
    }
}

void Core::setRefuseConnections(std::function<void(bool on)> refuse) {
    const std::lock_guard lock(mutex_);
    interior_.refuseConnections = std::move(refuse);
}

// All replies leave the device here, as all reports leave it in `Reports::push`. Nothing goes wrong on the
// control plane.
Reply Core::handle(const Request& request) {
    const Row* const row = table_.find(request.verb, request.path);
    const Body body = row != nullptr && request.verb != "GET" ? parseBody(request.body) : Body{};
    const std::lock_guard lock(mutex_);
    ++(row != nullptr ? interior_.requests[static_cast<std::size_t>(row - table_.rows().data())] : interior_.astray);
    const auto struck =
        request.path.starts_with(kControlPrefix) ? Faults::Struck() : interior_.faults.meet(request, interior_);
    Reply reply = Faults::prevented(struck) ? Reply() : answerLocked(row, request, body);
    Faults::spoil(struck, reply);
    if (!interior_.agenda.empty()) {
        wake_.notify_one();
    }
    return reply;
}

Reply Core::answerLocked(const Row* row, const Request& request, const Body& body) {
    if (auto closed = closedDoorLocked(request)) {
        return std::move(*closed);
    }
    if (row == nullptr) {
        return table_.hasPath(request.path) ? httpFailure(405, "this path has no such verb")
                                            : httpFailure(404, "there is no such path");
    }
    if (request.bodyError != 0) {
        return httpFailure(request.bodyError, request.bodyError == 413 ? "the body is too large" : "unreadable body");
    }
    return body.refusal ? refused(*body.refusal) : actLocked(*row, request, body.value);
}

// Timer thread.
void Core::runAgenda() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        const auto due = interior_.agenda.next();
        if (due && *due <= Agenda::Clock::now()) {
            try {
                interior_.agenda.take()(interior_);
            } catch (const json::exception&) {
                // What the task was about has been changed into something else: it ends.
            }
        } else if (due) {
            wake_.wait_until(lock, *due);
        } else {
            wake_.wait(lock);
        }
    }
}

Reply Core::actLocked(const Row& row, const Request& request, const json& body) {
    try {
        Call call(row, request, body, interior_);
        row.action(call);
        return std::move(call.reply);
    } catch (const Refusal& refusal) {
        return refused(refusal);
    } catch (const json::exception& error) {
        return httpFailure(500, fmt::format("the state at {} is not as it should be: {}", row.place, error.what()));
    }
}

std::optional<Reply> Core::closedDoorLocked(const Request& request) {
    if (request.path.starts_with(kControlPrefix)) {
        return request.local || remoteControl_
                   ? std::nullopt
                   : std::optional(httpFailure(403, "the control plane answers its own host only"));
    }
    if (request.path == kLoginPath || interior_.tokens.valid(request.token)) {
        return std::nullopt;
    }
    ++interior_.refused;
    return httpFailure(401, "the token is missing or no longer valid, log in");
}

void Core::stop() {
    {
        const std::lock_guard lock(mutex_);
        interior_.reports.close();
        stopping_ = true;
        wake_.notify_one();
    }
    if (timer_.joinable()) {
        timer_.join();
    }
}

}  // namespace devicesim
