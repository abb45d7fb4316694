#include "fuzz/steps.h"

#include "fuzz/targets.h"

namespace {

thread_local std::uint64_t stepCount = 0;

// The dearest bytes are those of an exponent: "1e400," multiplies some three hundred times, and is looked at up to
// three times. All else takes a few steps for each byte.
constexpr std::uint64_t kStepsPerByte = 600;
constexpr std::uint64_t kStepsAtLeast = 20'000;  // tables that are made on first use

}  // namespace

// Called by the compiler's instrumentation at the start of each basic block.
extern "C" void __wrap___sanitizer_cov_trace_pc();  // NOLINT(bugprone-reserved-identifier)
extern "C" void __wrap___sanitizer_cov_trace_pc() { ++stepCount; }

namespace lcdfuzz {

LinearSteps::LinearSteps(std::size_t bytes) : bytes_(bytes), before_(stepCount) {}

void LinearSteps::check() const {
    const std::uint64_t taken = stepCount - before_;
    require(taken > 0, "the steps are counted");
    require(taken <= kStepsAtLeast + kStepsPerByte * bytes_, "{} steps for {} bytes are still linear", taken, bytes_);
}

}  // namespace lcdfuzz
