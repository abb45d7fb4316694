// What a host loads and runs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "ktp/component.h"
#include "platform/ktp/settings.h"

namespace ktp {

struct PluginConfig {
    std::filesystem::path file;
    std::string place = {};  ///< "FILE:LINE: " ahead of errors; empty when built in code
};

struct ComponentConfig {
    std::string name;         ///< of the component, as its plug-in's table has it
    std::string lookup = {};  ///< the name under which others find it; empty: nobody does
    std::string place = {};
};

struct HostConfig {
    std::vector<PluginConfig> plugins;
    /// Components that the program itself brings, beside those of the plug-ins. They outlive the host.
    std::vector<const ComponentInfo*> ownComponents;
    /// In the order in which they are created and started; stopped and deleted in reverse.
    std::vector<ComponentConfig> components;
    Settings settings;
    std::string place = {};  ///< "FILE: " ahead of errors that concern the whole

    /// Reads a TOML file; `lcdpanel.toml` shows all that it may hold. A mistake is a `HostError` with file,
    /// line, key and value.
    static HostConfig fromFile(const std::filesystem::path& file);
    /// All mistakes in a file, in its order, each as the error's text would be. Empty for one that can be run.
    static std::vector<std::string> mistakesIn(const std::filesystem::path& file);

    /// Refuses what can't be run, as far as that is known before the plug-ins are loaded: with a `HostError`.
    void check() const;
};

}  // namespace ktp
