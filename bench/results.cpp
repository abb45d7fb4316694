#include "bench/results.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace bench {

void print(const Lines& lines, bool json) {
    auto all = nlohmann::ordered_json::array();
    for (const Line& line : lines) {
        if (!json) {
            std::printf("%s: %.2f%s", line.name.c_str(), line.value, line.unit.c_str());
            if (line.kind != Goal::none) {
                std::printf(" (goal %s%.2f%s)", line.kind == Goal::atMost ? "at most " : "", line.goal,
                            line.unit.c_str());
            }
            std::puts("");
            continue;
        }
        auto& row = all.emplace_back(nlohmann::ordered_json{{"name", line.name}, {"value", line.value}});
        row["unit"] = line.unit;
        if (line.kind != Goal::none) {
            row[line.kind == Goal::atMost ? "at most" : "at least"] = line.goal;
            row["held"] = line.held();
        }
    }
    if (json) {
        std::puts(all.dump(2).c_str());
    }
    std::fflush(stdout);
}

double quantile(std::vector<double>& values, double share) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

}  // namespace bench
