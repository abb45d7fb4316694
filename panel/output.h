// Lines for a person.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace panel {

enum class Tone { plain, heading, good, bad, quiet };

/// Writes lines to standard output, coloured when it is a terminal and NO_COLOR isn't set. One thread.
class Output {
public:
    Output();

    void heading(const std::string& text);
    /// Seconds since construction, component, kind, what happened.
    void event(const std::string& component, const std::string& kind, const std::string& what, Tone tone = Tone::plain);
    void table(const std::vector<std::pair<std::string, std::string>>& rows);
    void line(const std::string& text, Tone tone = Tone::plain);

private:
    std::string toned(const std::string& text, Tone tone) const;

    const bool coloured_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// What differs between two JSON texts, shortly: "/enable 0 -> 1". Where nothing does, "unchanged".
std::string difference(const std::string& before, const std::string& after);
/// A JSON text cut to one readable line.
std::string shortened(const std::string& text);

/// Seconds or parts of it, for a person.
std::string durationText(std::chrono::nanoseconds time);

}  // namespace panel
