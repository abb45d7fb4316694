// Messages that this host sends beside those of every platform.
#pragma once

#include <cstdint>

namespace ktp {

/// Sent to all running components before the first of them gets its stop message: what takes long may now
/// begin to end.
inline constexpr std::uint32_t kStopAhead = 0xFFFFFFFD;

}  // namespace ktp
