// The control plane of a simulated device.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace panel {

/// Raises std::runtime_error, which names the URL, when the device can't be reached or refuses. One thread.
class SimControl {
public:
    explicit SimControl(std::string url) : url_(std::move(url)) {}

    /// Changes a place of the device's state as the device itself does; `pointer` is a JSON pointer.
    void change(const std::string& pointer, const nlohmann::json& value) const;
    /// How many requests of that verb and path the device has answered.
    long requests(const std::string& verb, const std::string& path) const;
    nlohmann::json state() const;

private:
    nlohmann::json call(const char* verb, const std::string& path, const std::string& body) const;

    std::string url_;
};

}  // namespace panel
