#include "panel/simcontrol.h"

#include <httplib.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace panel {

using nlohmann::json;

json SimControl::call(const char* verb, const std::string& path, const std::string& body) const {
    httplib::Client client(url_);
    client.set_connection_timeout(3);
    client.set_read_timeout(5);
    const httplib::Result reply =
        std::string(verb) == "GET" ? client.Get(path) : client.Post(path, body, "application/json");
    if (!reply) {
        throw std::runtime_error(url_ + ": the device doesn't answer (" + httplib::to_string(reply.error()) + ")");
    }
    const json envelope = json::parse(reply->body, nullptr, false);
    if (reply->status != 200 || !envelope.is_object() || envelope.value("code", -1) != 0) {
        throw std::runtime_error(url_ + path + ": this is no simulated device, or it refuses: status " +
                                 std::to_string(reply->status) + ", " + reply->body.substr(0, 200));
    }
    return envelope.value("data", json());
}

void SimControl::change(const std::string& pointer, const json& value) const {
    call("POST", "/sim/change", json{{"pointer", pointer}, {"value", value}}.dump());
}

long SimControl::requests(const std::string& verb, const std::string& path) const {
    return call("GET", "/sim/counters", {}).at("requests").value(verb + " " + path, 0L);
}

json SimControl::state() const { return call("GET", "/sim/state", {}); }

}  // namespace panel
