// Writes the entry points of a small plug-in.
#pragma once

#include "ktp/api.h"
#include "ktp/plugin.h"

namespace ktp {

/// The table row of `T`, a default-constructible class whose first base is its interface.
template <class T>
ComponentInfo describe(const char* name) {
    using Component = ComponentTmpl<T>;
    return {&Component::creator, &Component::deletor, &Component::getMessageHandler, name, "{}"};
}

}  // namespace ktp

/// Defines the entry points of the plug-in whose components have the rows that follow.
#define KTP_PLUGIN(PLUGIN, VERSION, ...)                                                                          \
    extern "C" {                                                                                                  \
    __attribute__((visibility("default")))                                                                        \
    const ktp::ComponentInfo* PLUGIN##_ktp_componentInfoTable[] = {__VA_ARGS__, nullptr};                         \
    }                                                                                                             \
    const ktp::PluginInfo* pluginfo() {                                                                           \
        static const ktp::PluginInfo info = {ktp::kPluginRecordVersion, PLUGIN##_ktp_componentInfoTable, #PLUGIN, \
                                             VERSION, "{}"};                                                      \
        return &info;                                                                                             \
    }                                                                                                             \
    void pluginit(void* platform) { ktp::api::get().platform = static_cast<ktp::IPlatform*>(platform); }
