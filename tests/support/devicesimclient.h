// A client of the simulated device and a reader of its reports.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "devicesim/devicesim.h"
#include "tests/support/waiting.h"

namespace lcdtest {

using nlohmann::json;

inline constexpr const char* kLogin = "/zelto/v1/system/auth/login";
inline constexpr const char* kStream = "/zelto/v1/report/stream";

/// One kept-alive connection; logs in unless told otherwise.
class DeviceClient {
public:
    explicit DeviceClient(const devicesim::Device& device, bool loggedIn = true) : http_("127.0.0.1", device.port()) {
        http_.set_keep_alive(true);
        http_.set_tcp_nodelay(true);
        if (loggedIn) {
            token = send("POST", kLogin, R"({"username":"admin","password":"Zk9wUTc4"})")["data"]["token"];
        }
    }

    /// The envelope; `status` tells the rest.
    json send(const std::string& verb, const std::string& path, const std::string& body = "", int tag = 0) {
        httplib::Request request;
        request.method = verb;
        request.path = path;
        request.body = body;
        request.headers = {{"Authorization", "Bearer " + token}, {"X-Sequence-Tag", std::to_string(tag)}};
        const auto reply = http_.send(request);
        status = reply ? reply->status : 0;
        return reply ? json::parse(reply->body, nullptr, false) : json();
    }
    json get(const std::string& path) { return send("GET", path)["data"]; }
    int statusOf(const std::string& path) { return send("GET", path), status; }

    std::string token;
    int status = 0;

private:
    httplib::Client http_;
};

struct Event {
    std::string id = {}, body = {};
    int number = 0, sequence = -1;
};

/// Reads the stream of reports in a thread of its own, from construction on.
class ReportReader {
public:
    /// `pause` is called after each piece that was read.
    ReportReader(
        const devicesim::Device& device, const std::string& token, std::function<void()> pause = [] {})
        : http_("127.0.0.1", device.port()) {
        http_.set_read_timeout(kDeadline);
        thread_ = std::thread([this, token, pause = std::move(pause)] {
            http_.Get(kStream, httplib::Headers{{"Authorization", "Bearer " + token}},
                      [this, &pause](const char* data, std::size_t size) {
                          monitor_.change([&] { take(std::string(data, size)); });
                          pause();
                          return true;
                      });
            monitor_.change([this] { ended_ = true; });
        });
        EXPECT_TRUE(monitor_.waitUntil([this] { return text_.starts_with(":"); })) << "no comment line at once";
    }
    ~ReportReader() {
        http_.stop();
        thread_.join();
    }

    bool ended() {
        return monitor_.waitUntil([this] { return ended_; });
    }
    /// The first `count` events; fewer if they don't come in time.
    std::vector<Event> events(std::size_t count) {
        monitor_.waitUntil([this, count] { return events_.size() >= count; });
        return monitor_.read([this] { return events_; });
    }

private:
    void take(const std::string& data) {
        text_ += data;
        for (std::size_t end; (end = text_.find('\n', parsed_)) != std::string::npos; parsed_ = end + 1) {
            takeLine(text_.substr(parsed_, end - parsed_));
        }
    }

    void takeLine(const std::string& line) {
        const std::string value = line.substr(std::min(line.size(), line.find(' ') + 1));
        if (line.starts_with("event: ")) {
            next_ = {.id = value};
        } else if (line.starts_with("id: ")) {
            next_.number = std::stoi(value.substr(value.rfind('-') + 1));
        } else if (line.starts_with("data: ") && next_.sequence < 0) {
            next_.sequence = json::parse(value)["sequence"];
            bodyLines_ = 0;
        } else if (line.starts_with("data: ")) {
            next_.body += bodyLines_++ == 0 ? value : "\n" + value;
        } else if (line.empty()) {
            events_.push_back(next_);
        } else {
            EXPECT_TRUE(line.starts_with(": ")) << "neither event nor comment: " << line;
        }
    }

    httplib::Client http_;
    std::thread thread_;
    Monitor monitor_;
    // Guarded by monitor_.
    std::string text_;
    std::size_t parsed_ = 0;
    Event next_;
    int bodyLines_ = 0;
    std::vector<Event> events_;
    bool ended_ = false;
};

}  // namespace lcdtest
