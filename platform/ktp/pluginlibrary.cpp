#include "platform/ktp/pluginlibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <cstring>
#include <utility>

#include "platform/ktp/hosterror.h"

namespace ktp {

PluginLibrary::PluginLibrary(const PluginConfig& config, IPlatform& platform)
    : handle_(dlopen(std::filesystem::absolute(config.file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
        throw HostError(fmt::format("{}plugins: can't load a plug-in: {}", config.place, dlerror()));
    }
    try {
        init(config, platform);
    } catch (...) {
        dlclose(handle_);
        throw;
    }
}

PluginLibrary::PluginLibrary(PluginLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)), info_(other.info_) {}

PluginLibrary::~PluginLibrary() {
    if (handle_ != nullptr) {
        dlclose(handle_);
    }
}

template <class Function>
Function* PluginLibrary::entry(const PluginConfig& config, const char* symbol) const {
    void* found = dlsym(handle_, symbol);
    if (found == nullptr) {
        throw HostError(fmt::format("{}plugins: \"{}\" is no plug-in, it lacks the function {}", config.place,
                                    config.file.string(), symbol));
    }
    return reinterpret_cast<Function*>(found);
}

void PluginLibrary::init(const PluginConfig& config, IPlatform& platform) {
    auto* initialise = entry<decltype(pluginit)>(config, "pluginit");
    auto* describe = entry<decltype(pluginfo)>(config, "pluginfo");
    initialise(&platform);
    info_ = describe();
    if (info_ == nullptr || std::strcmp(info_->recordVersion, kPluginRecordVersion) != 0) {
        throw HostError(fmt::format("{}plugins: \"{}\" was made for version {} of the plug-in record, not {}",
                                    config.place, config.file.string(), info_ == nullptr ? "?" : info_->recordVersion,
                                    kPluginRecordVersion));
    }
}

std::vector<const ComponentInfo*> PluginLibrary::components() const {
    std::vector<const ComponentInfo*> rows;
    for (const ComponentInfo* const* row = info_->components; *row != nullptr; ++row) {
        rows.push_back(*row);
    }
    return rows;
}

}  // namespace ktp
