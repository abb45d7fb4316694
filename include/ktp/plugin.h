// The entry points of a plug-in.
#pragma once

#include "ktp/component.h"

namespace ktp {

/// What `pluginfo` returns.
struct PluginInfo {
    const char* recordVersion;               ///< "0.1"
    const ComponentInfo* const* components;  ///< ended by a null pointer
    const char* name;
    const char* version;
    const char* metadata;  ///< JSON text, not read by anyone
};

inline constexpr const char* kPluginRecordVersion = "0.1";

}  // namespace ktp

#define KTP_EXPORT extern "C" __attribute__((visibility("default")))

/// Describes the plug-in. Depends on static data alone and may be called before `pluginit`.
KTP_EXPORT const ktp::PluginInfo* pluginfo();
/// Stores the platform pointer (a `ktp::IPlatform`). Starts nothing.
KTP_EXPORT void pluginit(void* platform);
