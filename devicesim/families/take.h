// Programme and preview.
#pragma once

namespace devicesim {

/// How far a T-bar is that isn't under way.
inline constexpr int kAtRest = -1;

}  // namespace devicesim
