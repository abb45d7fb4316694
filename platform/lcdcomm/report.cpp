#include "platform/lcdcomm/report.h"

#include <charconv>
#include <string_view>
#include <utility>

#include "json/ajson.h"
#include "platform/lcdcomm/gate.h"

namespace lcdcomm {

namespace {

constexpr std::size_t kLongestEpoch = 64;
constexpr std::size_t kLongestSource = 8192;
constexpr std::size_t kDeepestSource = 8;

template <class Number>
bool readNumber(std::string_view text, int base, Number& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out, base);
    return error == std::errc() && end == text.data() + text.size();
}

bool readOrder(std::string_view id, std::string& epoch, std::uint64_t& number) {
    const std::size_t dash = id.rfind('-');
    if (dash == 0 || dash == std::string_view::npos || dash > kLongestEpoch) {
        return false;
    }
    epoch = id.substr(0, dash);
    return readNumber(id.substr(dash + 1), 10, number);
}

struct Source {
    std::string token;
    std::int32_t sequence = 0;
    AJSON(token, sequence)
};

// Behind the gate, which knows no other texts than whole ones.
bool readSource(const std::string& text, LCD::CommChannel::AutoReportSource& out) {
    if (text.size() > kLongestSource || !passesGate(text, kDeepestSource)) {
        return false;
    }
    try {
        ajson::reader in(text);
        Source source;
        ajson::detail::read_document(in, ajson::detail::type_of<Source>(), &source);
        out = {std::move(source.token), source.sequence};
        return true;
    } catch (const ajson::exception&) {
        return false;
    }
}

}  // namespace

std::optional<Report> readReport(const StreamEvent& event) {
    Report report;
    const std::string_view data = event.data;
    const std::size_t lineEnd = data.find('\n');
    if (!readNumber(event.event, 16, report.id) || !readOrder(event.id, report.epoch, report.number) ||
        !readSource(std::string(data.substr(0, lineEnd)), report.source)) {
        return std::nullopt;
    }
    if (lineEnd != std::string_view::npos) {
        report.body = data.substr(lineEnd + 1);
    }
    return report;
}

ReportOrder::Verdict ReportOrder::take(const Report& report) {
    if (report.epoch == epoch_ && report.number <= last_) {
        return {false, std::nullopt};
    }
    return {true, moveTo(report.epoch, report.number, report.number - 1)};
}

std::optional<Gap> ReportOrder::takeComment(std::string_view text) {
    std::string epoch;
    std::uint64_t number = 0;
    if (!readOrder(text, epoch, number) || (epoch == epoch_ && number <= last_)) {
        return std::nullopt;
    }
    return moveTo(epoch, number, number);
}

std::optional<Gap> ReportOrder::moveTo(const std::string& epoch, std::uint64_t number, std::uint64_t expected) {
    const bool first = epoch_.empty();
    const bool started = epoch != epoch_;
    const bool missed = !started && last_ != expected;
    epoch_ = epoch;
    last_ = number;
    return started && !first ? std::optional(Gap::NewEpoch) : missed ? std::optional(Gap::Numbers) : std::nullopt;
}

}  // namespace lcdcomm
