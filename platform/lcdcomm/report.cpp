#include "platform/lcdcomm/report.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>

namespace lcdcomm {

namespace {

constexpr std::size_t kLongestEpoch = 64;
constexpr std::size_t kLongestSource = 8192;

template <class Number>
bool readNumber(std::string_view text, int base, Number& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out, base);
    return error == std::errc() && end == text.data() + text.size();
}

bool readOrder(std::string_view id, Report& report) {
    const std::size_t dash = id.rfind('-');
    if (dash == 0 || dash == std::string_view::npos || dash > kLongestEpoch) {
        return false;
    }
    report.epoch = id.substr(0, dash);
    return readNumber(id.substr(dash + 1), 10, report.number);
}

bool readSource(std::string_view text, LCD::CommChannel::AutoReportSource& source) {
    if (text.size() > kLongestSource) {
        return false;
    }
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object() || !json.contains("token") || !json.contains("sequence")) {
        return false;
    }
    const auto& token = json["token"];
    const auto& sequence = json["sequence"];
    // A double holds every number that may stand here.
    const double value = sequence.is_number_integer() ? sequence.get<double>() : HUGE_VAL;
    if (!token.is_string() || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    source = {token.get<std::string>(), static_cast<std::int32_t>(value)};
    return true;
}

}  // namespace

std::optional<Report> readReport(const StreamEvent& event) {
    Report report;
    const std::string_view data = event.data;
    const std::size_t lineEnd = data.find('\n');
    if (!readNumber(event.event, 16, report.id) || !readOrder(event.id, report) ||
        !readSource(data.substr(0, lineEnd), report.source)) {
        return std::nullopt;
    }
    if (lineEnd != std::string_view::npos) {
        report.body = data.substr(lineEnd + 1);
    }
    return report;
}

ReportOrder::Verdict ReportOrder::take(const Report& report) {
    Verdict verdict;
    if (report.epoch != epoch_) {
        if (!epoch_.empty()) {
            verdict.gap = Gap::NewEpoch;
        }
    } else if (report.number <= last_) {
        return {false, std::nullopt};
    } else if (report.number != last_ + 1) {
        verdict.gap = Gap::Numbers;
    }
    epoch_ = report.epoch;
    last_ = report.number;
    return verdict;
}

}  // namespace lcdcomm
