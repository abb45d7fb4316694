// Components and host configurations that a test builds in code.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "ktp/component.h"
#include "platform/ktp/hostconfig.h"
#include "platform/ktp/knownsettings.h"

namespace lcdtest {

/// What a component does with its messages; the result goes to the sender.
using Act = std::function<int(const ktp::IMessage&)>;

/// A component of the test's own.
class Part final : public ktp::IMessageHandler {
public:
    explicit Part(Act act) : act_(std::move(act)) {}
    int handleMessage(const ktp::IMessage* message) override { return act_(*message); }

private:
    const Act act_;
};

inline ktp::ComponentInfo part(const char* name, Act act) {
    return {[act = std::move(act)] { return new Part(act); }, [](void* object) { delete static_cast<Part*>(object); },
            [](void* object) { return static_cast<Part*>(object); }, name, "{}"};
}

inline ktp::PluginConfig plugin(const char* name) {
    return {std::filesystem::path(LCD_TEST_PLUGINS) / (std::string("lib") + name + ".so")};
}

/// Adds a component of the test's own, which outlives the host.
inline void add(ktp::HostConfig& config, const ktp::ComponentInfo& info, const char* lookup = "") {
    config.ownComponents.push_back(&info);
    config.components.push_back({info.name, lookup});
}

/// A host with the channel and its status, towards the device at `url`.
inline ktp::HostConfig commConfig(const std::string& url) {
    ktp::HostConfig config;
    config.plugins = {plugin("lcdcomm")};
    config.components = {{"lcd.comm.httpchannel", "lcdHttpChannel"}, {"lcd.comm.status", "lcdCommStatus"}};
    config.settings.set(ktp::kDeviceUrl, url);
    return config;
}

}  // namespace lcdtest
