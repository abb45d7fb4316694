#include "panel/session.h"

#include <filesystem>

#include "platform/ktp/knownsettings.h"

namespace panel {

namespace {

std::filesystem::path defaultConfigFile() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return program.parent_path().parent_path() / "share" / "lcdpanel" / "lcdpanel.toml";
}

ktp::HostConfig configOf(const SessionOptions& options, const std::string& deviceUrl) {
    auto config = ktp::HostConfig::fromFile(options.configFile.empty() ? defaultConfigFile()
                                                                       : std::filesystem::path(options.configFile));
    config.settings.set(ktp::kDeviceUrl, deviceUrl, "--device: ");
    return config;
}

}  // namespace

Session::Session(const SessionOptions& options)
    : device_(options.deviceUrl.empty() ? std::make_unique<devicesim::Device>() : nullptr),
      deviceUrl_(device_ ? device_->url() : options.deviceUrl),
      host_(configOf(options, deviceUrl_)) {
    host_.load();
    for (const Component& each : components()) {
        object(each.lookup.c_str());
    }
}

void Session::stop() {
    host_.stop();
    device_.reset();
}

void* Session::object(const char* lookup) {
    void* const component = host_.findComponent(lookup);
    if (component == nullptr) {
        throw std::runtime_error(std::string("no component is bound to the look-up name \"") + lookup +
                                 "\": bind one in the host's file");
    }
    return component;
}

void Session::subscribe(const Component& component, const Kind& kind, const std::string& name,
                        const Delivery& callback) {
    component.subscribe(object(component.lookup.c_str()), name, kind.value, callback);
}

void Session::get(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
                  int key) {
    component.get(object(component.lookup.c_str()), name, kind.value, callback, key);
}

void Session::set(const Component& component, const Kind& kind, const std::string& name, int key, const std::any& data,
                  const SetResult& callback) {
    component.set(object(component.lookup.c_str()), name, kind.value, key, data, callback);
}

}  // namespace panel
