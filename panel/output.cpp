#include "panel/output.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace panel {

namespace {

using nlohmann::json;

constexpr std::size_t kLongest = 76;

const char* codeOf(Tone tone) {
    switch (tone) {
        case Tone::heading:
            return "\033[1m";
        case Tone::good:
            return "\033[32m";
        case Tone::bad:
            return "\033[31m";
        case Tone::quiet:
            return "\033[2m";
        case Tone::plain:
            break;
    }
    return "";
}

}  // namespace

Output::Output() : coloured_(isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr) {}

std::string Output::toned(const std::string& text, Tone tone) const {
    return !coloured_ || tone == Tone::plain ? text : codeOf(tone) + text + "\033[0m";
}

void Output::line(const std::string& text, Tone tone) {
    std::puts(toned(text, tone).c_str());
    std::fflush(stdout);
}

void Output::heading(const std::string& text) {
    line("");
    line(text, Tone::heading);
}

void Output::event(const std::string& component, const std::string& kind, const std::string& what, Tone tone) {
    const std::chrono::duration<double> since = std::chrono::steady_clock::now() - start_;
    line(toned(fmt::format("{:7.3f}s", since.count()), Tone::quiet) + fmt::format("  {:<18}{:<25}", component, kind) +
         toned(what, tone));
}

void Output::table(const std::vector<std::pair<std::string, std::string>>& rows) {
    for (const auto& [name, value] : rows) {
        line(fmt::format("  {:<28}{:>14}", name, value));
    }
}

std::string shortened(const std::string& text) {
    return text.size() <= kLongest ? text : text.substr(0, kLongest - 3) + "...";
}

std::string difference(const std::string& before, const std::string& after) {
    const json from = json::parse(before, nullptr, false);
    const json to = json::parse(after, nullptr, false);
    if (from.is_discarded() || to.is_discarded()) {
        return shortened(after);
    }
    std::string text;
    for (const json& step : json::diff(from, to)) {
        const json::json_pointer place(step.at("path").get<std::string>());
        const std::string was = from.contains(place) ? from[place].dump() : "nothing";
        const std::string is = step.contains("value") ? step["value"].dump() : "nothing";
        text += fmt::format("{}{} {} -> {}", text.empty() ? "" : ", ", place.to_string(), was, is);
    }
    return text.empty() ? "unchanged" : shortened(text);
}

std::string durationText(std::chrono::nanoseconds time) {
    const double milliseconds = std::chrono::duration<double, std::milli>(time).count();
    return milliseconds < 1000 ? fmt::format("{:.2f} ms", milliseconds) : fmt::format("{:.2f} s", milliseconds / 1000);
}

}  // namespace panel
