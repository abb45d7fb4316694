#include "panel/errors.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <numeric>

namespace panel {

namespace {

bool sameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// How many letters must be put in, left out or replaced to make one of the other; capitals count as small ones.
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (sameLetter(a[i], b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// A name that was only begun counts as near.
std::size_t unlikeness(const std::string& name, const std::string& wanted) {
    return std::min(distance(name, wanted), distance(name, wanted.substr(0, name.size() + 1)) + 1);
}

}  // namespace

std::string nearest(const std::string& name, const std::vector<std::string>& names) {
    const auto found = std::min_element(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
        return unlikeness(name, a) < unlikeness(name, b);
    });
    return found == names.end() ? std::string() : *found;
}

BadInput unknownName(const std::string& what, const std::string& name, const std::vector<std::string>& names,
                     const std::string& remedy) {
    return BadInput(
        fmt::format("there is no {} \"{}\": did you mean \"{}\"? {}", what, name, nearest(name, names), remedy));
}

}  // namespace panel
