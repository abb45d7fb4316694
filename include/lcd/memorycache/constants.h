// Lookup names and messages of the memory cache.
#pragma once

#include <cstdint>

namespace LCD::MemoryCache::constants {

inline constexpr const char* OBJ_MEMORYCACHE_USER_NAME = "lcdMemoryCacheUser";
inline constexpr const char* OBJ_MEMORYCACHE_SEQUENCE_NAME = "lcdMemoryCacheSequence";
inline constexpr const char* OBJ_MEMORYCACHE_NODE_NAME = "lcdMemoryCacheNode";

/// The token was cleared: all mirrors are stale.
inline constexpr std::uint32_t MSG_TOKEN_CLEARED = 0xA0000001;
/// The device's data was replaced: log in anew, all mirrors are stale.
inline constexpr std::uint32_t MSG_DEVICE_DATA_REPLACED = 0xA0000002;
/// The layers have changed as a whole: the layer mirrors are stale.
inline constexpr std::uint32_t MSG_LAYERS_INVALID = 0xA0000003;

}  // namespace LCD::MemoryCache::constants
