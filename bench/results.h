// The table that is printed in the end.
#pragma once

#include <string>
#include <vector>

namespace bench {

enum class Goal { none, atLeast, atMost };

struct Line {
    std::string name;
    double value = 0;
    std::string unit;
    Goal kind = Goal::none;
    double goal = 0;

    /// Machines are noisy: a fifth beside the goal is let pass.
    bool held() const {
        constexpr double kSlack = 0.2;
        return kind == Goal::none ||
               (kind == Goal::atLeast ? value >= goal * (1 - kSlack) : value <= goal * (1 + kSlack));
    }
};

using Lines = std::vector<Line>;

/// As text, or as one JSON array.
void print(const Lines& lines, bool json);

/// Sorts `values`, which must not be empty; `share` 0.5 is the median.
double quantile(std::vector<double>& values, double share);

// Each part of the program gives its lines.
Lines measureJson();
Lines measureEngines();
Lines measureLoopback();
Lines measureHost();

}  // namespace bench
