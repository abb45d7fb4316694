// The control plane of a simulated device.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace panel {

/// Raises `Unreachable`, which names the URL, when the device can't be reached, and std::runtime_error when it refuses.
/// Any thread.
class SimControl {
public:
    explicit SimControl(std::string url) : url_(std::move(url)) {}

    /// Changes a place of the device's state as the device itself does; `pointer` is a JSON pointer.
    void change(const std::string& pointer, const nlohmann::json& value) const;
    /// How many requests of that verb and path the device has answered.
    long requests(const std::string& verb, const std::string& path) const;
    nlohmann::json state() const;
    /// Lets the device misbehave: {"kind":"cutStream"} and the like.
    void addFault(const nlohmann::json& rule) const;
    void removeFaults() const;

    /// Any request to the device; the data of its answer. With a token it is a client's.
    nlohmann::json send(const std::string& verb, const std::string& path, const std::string& body = {},
                        const std::string& token = {}) const;

private:
    std::string url_;
};

/// Another client of the device: a second panel, say.
class OtherClient {
public:
    explicit OtherClient(SimControl device);

    nlohmann::json send(const std::string& verb, const std::string& path, const nlohmann::json& body) const;

private:
    SimControl device_;
    std::string token_;
};

}  // namespace panel
