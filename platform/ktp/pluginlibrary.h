// A plug-in's shared library.
#pragma once

#include <vector>

#include "ktp/iplatform.h"
#include "ktp/plugin.h"
#include "platform/ktp/hostconfig.h"

namespace ktp {

/// Loads a plug-in and hands it the platform; unloads it in the end. The host's thread.
class PluginLibrary {
public:
    PluginLibrary(const PluginConfig& config, IPlatform& platform);
    PluginLibrary(PluginLibrary&& other) noexcept;
    PluginLibrary& operator=(PluginLibrary&&) = delete;
    ~PluginLibrary();

    const char* name() const { return info_->name; }
    /// The rows of its component table.
    std::vector<const ComponentInfo*> components() const;

private:
    template <class Function>
    Function* entry(const PluginConfig& config, const char* symbol) const;
    void init(const PluginConfig& config, IPlatform& platform);

    void* handle_;
    const PluginInfo* info_ = nullptr;
};

}  // namespace ktp
