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

constexpr int kDeepest = 64;  // nesting of a body

Reply failure(int status, int code, std::string_view text) {
    return {.status = status, .body = envelope(code, text, nullptr)};
}

Reply httpFailure(int status, std::string_view text) { return failure(status, status, text); }

Reply refused(const Refusal& refusal) { return failure(200, static_cast<int>(refusal.failure), refusal.what()); }

struct Body {
    json value;
    std::optional<Refusal> refusal;
};

// Texts nested deeper than kDeepest would exhaust the stack of whoever copies or writes them.
Body parseBody(const std::string& text) {
    try {
        return {text.empty()
                    ? json()
                    : json::parse(text,
                                  [](int depth, json::parse_event_t, const json&) {
                                      return depth <= kDeepest
                                                 ? true
                                                 : throw Refusal(Failure::NotJson, "the body is nested too deeply");
                                  }),
                std::nullopt};
    } catch (const json::exception&) {
        return {nullptr, Refusal(Failure::NotJson, "the body is not JSON")};
    } catch (const Refusal& tooDeep) {
        return {nullptr, tooDeep};
    }
}

}  // namespace

Core::Core(const Options& options, std::vector<Row> rows, json start)
    : table_(std::move(rows)),
      remoteControl_(options.remoteControl),
      interior_{.table = table_,
                .start = std::move(start),
                .tokens = Tokens(options.tokenLifetime, options.tokens),
                .reports = Reports(options.streams, options.streamQueue)} {
    requireStartData();
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
    for (const auto& [row, places] : table_.reportsOf(Place(), start)) {
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

// All replies leave the device here, as all reports leave it in `Reports::push`.
Reply Core::handle(const Request& request) {
    const Row* const row = table_.find(request.verb, request.path);
    const Body body = row != nullptr && request.verb != "GET" ? parseBody(request.body) : Body{};
    const std::lock_guard lock(mutex_);
    ++(row != nullptr ? interior_.requests[static_cast<std::size_t>(row - table_.rows().data())] : interior_.astray);
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
    const std::lock_guard lock(mutex_);
    interior_.reports.close();
}

}  // namespace devicesim
