#include "platform/ktp/hostconfig.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <string_view>
#include <system_error>

#include "ktp/imessagecenter.h"
#include "platform/ktp/hosterror.h"

namespace ktp {

namespace {

// Refuses the second of two equal values.
class Uniqueness {
public:
    explicit Uniqueness(std::string_view key) : key_(key) {}

    void add(const std::string& value, const std::string& place) {
        if (!seen_.insert(value).second) {
            throw HostError(fmt::format("{}{}: \"{}\" is there twice, remove one", place, key_, value));
        }
    }

private:
    const std::string_view key_;
    std::set<std::string> seen_;
};

void checkPlugin(const PluginConfig& plugin) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(plugin.file, error)) {
        throw HostError(fmt::format("{}plugins: there is no plug-in file \"{}\"", plugin.place, plugin.file.string()));
    }
}

void checkComponent(const ComponentConfig& component) {
    if (component.name.empty()) {
        throw HostError(
            fmt::format("{}component: name is missing, give the name from the plug-in's table", component.place));
    }
    for (const char* reserved : {kMessageCenterName, kSettingsName}) {
        if (component.lookup == reserved) {
            throw HostError(fmt::format("{}component.lookup: \"{}\" is the host's own, use another name",
                                        component.place, reserved));
        }
    }
}

}  // namespace

void HostConfig::check() const {
    Uniqueness files("plugins");
    for (const PluginConfig& plugin : plugins) {
        checkPlugin(plugin);
        files.add(std::filesystem::canonical(plugin.file).string(), plugin.place);
    }
    Uniqueness names("component.name");
    Uniqueness lookups("component.lookup");
    for (const ComponentConfig& component : components) {
        checkComponent(component);
        names.add(component.name, component.place);
        if (!component.lookup.empty()) {
            lookups.add(component.lookup, component.place);
        }
    }
    if (components.empty()) {
        throw HostError(place + "component: there is none, name at least one to run");
    }
}

}  // namespace ktp
