#include "panel/simcontrol.h"

#include <fmt/format.h>
#include <httplib.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "panel/errors.h"

namespace panel {

using nlohmann::json;

json SimControl::send(const std::string& verb, const std::string& path, const std::string& body,
                      const std::string& token) const {
    httplib::Client client(url_);
    client.set_connection_timeout(3);
    client.set_read_timeout(5);
    client.set_tcp_nodelay(true);
    httplib::Request request;
    request.method = verb;
    request.path = path;
    request.body = body;
    if (!token.empty()) {
        request.headers.emplace("Authorization", "Bearer " + token);
    }
    const httplib::Result reply = client.send(request);
    if (!reply) {
        throw Unreachable(fmt::format("{}: the device doesn't answer ({})", url_, httplib::to_string(reply.error())));
    }
    const json envelope = json::parse(reply->body, nullptr, false);
    if (reply->status != 200 || !envelope.is_object() || envelope.value("code", -1) != 0) {
        throw std::runtime_error(fmt::format("{}{}: this is no simulated device, or it refuses: status {}, {}", url_,
                                             path, reply->status, reply->body.substr(0, 200)));
    }
    return envelope.value("data", json());
}

void SimControl::change(const std::string& pointer, const json& value) const {
    send("POST", "/sim/change", json{{"pointer", pointer}, {"value", value}}.dump());
}

long SimControl::requests(const std::string& verb, const std::string& path) const {
    return send("GET", "/sim/counters").at("requests").value(verb + " " + path, 0L);
}

json SimControl::state() const { return send("GET", "/sim/state"); }

void SimControl::addFault(const json& rule) const { send("POST", "/sim/faults", rule.dump()); }

void SimControl::removeFaults() const { send("DELETE", "/sim/faults"); }

OtherClient::OtherClient(SimControl device)
    : device_(std::move(device)),
      token_(device_.send("POST", "/zelto/v1/system/auth/login", device_.state().at("session").dump()).at("token")) {}

json OtherClient::send(const std::string& verb, const std::string& path, const json& body) const {
    return device_.send(verb, path, body.dump(), token_);
}

}  // namespace panel
