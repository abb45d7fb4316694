#include "platform/lcdcomm/reportstream.h"

#include <strings.h>

#include "kt/log.h"
#include "platform/ktp/knownsettings.h"
#include "platform/lcdcomm/gate.h"
#include "platform/lcdcomm/request.h"

namespace lcdcomm {

namespace {

constexpr const char* kPath = "/zelto/v1/report/stream";
constexpr std::string_view kContentType = "text/event-stream";
constexpr long kOk = 200;
constexpr long kUnauthorized = 401;
constexpr std::chrono::milliseconds kForever = std::chrono::years(1);

}  // namespace

ReportStream::ReportStream(Link& link, ReportQueue& queue)
    : link_(link),
      queue_(queue),
      url_(ktp::valueOf(ktp::kDeviceUrl) + kPath),
      connectTimeout_(ktp::valueOf(ktp::kConnectTimeoutMs)),
      silence_(2 * ktp::valueOf(ktp::kHeartbeatMs)),
      largestReport_(static_cast<std::size_t>(ktp::valueOf(ktp::kLargestReport))),
      deepest_(static_cast<std::size_t>(ktp::valueOf(ktp::kDeepestNesting))),
      backoff_(Milliseconds(ktp::valueOf(ktp::kFirstRetryMs)), Milliseconds(ktp::valueOf(ktp::kLongestRetryMs))) {}

void ReportStream::read(const std::stop_token& stop) {
    const std::stop_callback wake(stop, [this] { transfer_.wake(); });
    Token token = link_.session.await(0, kForever, stop);
    while (!stop.stop_requested()) {
        Milliseconds lived = Milliseconds::zero();
        if (token.text.empty()) {
            // A login that failed, or a token that was given up: without requests nobody else would miss it.
            link_.session.askForLogin();
        } else {
            lived = readOnce(token, stop);
            link_.receiver.connected = false;
        }
        // A new token ends the wait, since the old one may have been the reason.
        token = link_.session.await(token.number, backoff_.next(lived), stop);
    }
}

ReportStream::Milliseconds ReportStream::readOnce(const Token& token, const std::stop_token& stop) {
    transfer_.prepare(url_, connectTimeout_);
    HeaderLines headers;
    headers.add("Accept: text/event-stream");
    addAuthorization(headers, token.text);
    transfer_.set(CURLOPT_HTTPHEADER, headers.get());
    Connection connection{
        .owner = *this, .parser = EventParser(largestReport_), .silentAt = Clock::now() + connectTimeout_ + silence_};
    transfer_.set(CURLOPT_WRITEFUNCTION, &ReportStream::takeBody);
    transfer_.set(CURLOPT_WRITEDATA, &connection);

    const CURLcode result = transfer_.run([&connection, &stop] {
        return stop.stop_requested() ? Milliseconds::zero()
                                     : std::chrono::ceil<Milliseconds>(connection.silentAt - Clock::now());
    });
    if (!stop.stop_requested()) {
        if (problemLog_.due()) {
            KT_WARN("report stream {} is lost: {}", url_, problemOf(connection, result));
        }
        if (!connection.isOpen() && status() == kUnauthorized) {
            link_.session.refused(token);
        }
    }
    return connection.isOpen() ? std::chrono::floor<Milliseconds>(Clock::now() - connection.openedAt)
                               : Milliseconds::zero();
}

const char* ReportStream::problemOf(const Connection& connection, CURLcode result) const {
    if (connection.problem != nullptr) {
        return connection.problem;
    }
    if (result == CURLE_ABORTED_BY_CALLBACK) {
        return "it has been silent for too long";
    }
    if (result != CURLE_OK) {
        return curl_easy_strerror(result);
    }
    const char* problem = refusal();
    return problem == nullptr ? "the device closed it" : problem;
}

std::size_t ReportStream::takeBody(char* bytes, std::size_t size, std::size_t count, void* connection) {
    auto& to = *static_cast<Connection*>(connection);
    return to.owner.takeBytes(to, {bytes, size * count}) ? size * count : 0;
}

bool ReportStream::takeBytes(Connection& connection, std::string_view bytes) {
    if (!connection.isOpen()) {
        connection.problem = refusal();
        if (connection.problem != nullptr) {
            return false;
        }
        connected(connection);
    }
    connection.silentAt = Clock::now() + silence_;
    link_.receiver.bytes.fetch_add(bytes.size(), std::memory_order_relaxed);
    connection.parser.feed(
        bytes, [this](const StreamEvent& event) { takeEvent(event); },
        [this](std::string_view comment) {
            if (const std::optional<Gap> gap = order_.takeComment(comment)) {
                queue_.put(*gap);
            }
        });
    connection.problem = connection.parser.problem();
    return connection.problem == nullptr;
}

long ReportStream::status() const {
    long status = 0;
    curl_easy_getinfo(transfer_.easy(), CURLINFO_RESPONSE_CODE, &status);
    return status;
}

// Why an answer is no stream of reports; null when it is one.
const char* ReportStream::refusal() const {
    const char* type = nullptr;
    curl_easy_getinfo(transfer_.easy(), CURLINFO_CONTENT_TYPE, &type);
    if (status() == kUnauthorized) {
        return "the device doesn't know the token";
    }
    if (status() != kOk) {
        return "the device answers with another status than 200";
    }
    const bool isStream = type != nullptr && strncasecmp(type, kContentType.data(), kContentType.size()) == 0;
    return isStream ? nullptr : "the device answers with something else than text/event-stream";
}

void ReportStream::connected(Connection& connection) {
    connection.openedAt = Clock::now();
    if (openLog_.due()) {
        KT_INFO("report stream {} is open", url_);
    }
    link_.receiver.connected = true;
    link_.receiver.connects.fetch_add(1, std::memory_order_relaxed);
    queue_.put(Gap::Connected);
}

void ReportStream::takeEvent(const StreamEvent& event) {
    ReceiverCounters& counters = link_.receiver;
    std::optional<Report> report = readReport(event);
    if (!report) {
        return drop(counters.malformed, "is no report");
    }
    counters.reports.fetch_add(1, std::memory_order_relaxed);
    const ReportOrder::Verdict verdict = order_.take(*report);
    if (verdict.gap) {
        queue_.put(*verdict.gap);
    }
    if (!verdict.fresh) {
        counters.late.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    if (!passesGate(report->body, deepest_)) {
        return drop(counters.gated, "has a body that is no complete JSON text");
    }
    report->arrival = Clock::now();
    if (!queue_.put(std::move(*report))) {
        counters.overflowed.fetch_add(1, std::memory_order_relaxed);
    }
}

// An event that might have told of a change.
void ReportStream::drop(Counter& counter, const char* reason) {
    counter.fetch_add(1, std::memory_order_relaxed);
    queue_.put(Gap::Refused);
    if (problemLog_.due()) {
        KT_WARN("report stream {} has an event that {}", url_, reason);
    }
}

}  // namespace lcdcomm
