// Counts the steps that the code under test takes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lcdfuzz {

/// Holds its scope to a number of steps that is linear in the bytes it works on. A step is a basic block of the code
/// under test.
class LinearSteps {
public:
    explicit LinearSteps(std::size_t bytes);
    /// Throws `BrokenPromise` when there were more steps than that, or none at all.
    void check() const;

private:
    const std::size_t bytes_;
    const std::uint64_t before_;
};

}  // namespace lcdfuzz
