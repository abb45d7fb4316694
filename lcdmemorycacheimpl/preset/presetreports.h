// Names that the getter and the setter of the presets share.
#pragma once

#include <cstdint>

namespace LCD::MemoryCacheImpl {

/// The report that echoes a load.
inline constexpr std::uint32_t kPresetApplyReport = 0xa2203;

/// The two requesters of loads that know of each other.
inline constexpr char BIZREQUESTERNAME[] = "PresetControl";
inline constexpr char MENUREQUESTERNAME[] = "presetContainerRequesterName";

}  // namespace LCD::MemoryCacheImpl
