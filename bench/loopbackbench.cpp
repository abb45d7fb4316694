// End to end: the real host, channel and receiver against a simulated device on loopback, beside bare round trips.
#include <arpa/inet.h>
#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "bench/latency.h"
#include "bench/results.h"
#include "panel/session.h"

namespace bench {

namespace {

constexpr const char* kPath = "/zelto/v1/screen/global/swap";

/// One byte there and back again over a connection of its own.
class Echo {
public:
    Echo() {
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        client_ = socket(AF_INET, SOCK_STREAM, 0);
        if (bind(listener, any, size) != 0 || listen(listener, 1) != 0 || getsockname(listener, any, &size) != 0 ||
            connect(client_, any, size) != 0) {
            throw std::runtime_error("no loopback connection");
        }
        server_ = accept(listener, nullptr, nullptr);
        close(listener);
        thread_ = std::thread([this] {
            for (char byte; read(server_, &byte, 1) == 1 && write(server_, &byte, 1) == 1;) {
            }
        });
    }
    ~Echo() {
        shutdown(client_, SHUT_RDWR);
        thread_.join();
        close(client_);
        close(server_);
    }
    double once() const {
        const auto begin = Clock::now();
        char byte = 0;
        if (write(client_, &byte, 1) != 1 || read(client_, &byte, 1) != 1) {
            throw std::runtime_error("the echo is gone");
        }
        return micros(Clock::now() - begin);
    }

private:
    int client_ = -1;
    int server_ = -1;
    std::thread thread_;
};

/// The same change by libcurl alone, with the same headers, over a kept connection.
class BareChange {
public:
    BareChange(const std::string& url, const std::string& token)
        : curl_(curl_easy_init(), curl_easy_cleanup),
          headers_(curl_slist_append(nullptr, ("Authorization: Bearer " + token).c_str()), curl_slist_free_all) {
        curl_slist_append(headers_.get(), "Content-Type: application/json");
        curl_slist_append(headers_.get(), "Expect:");
        curl_easy_setopt(curl_.get(), CURLOPT_NOSIGNAL, 1L);
        curl_easy_setopt(curl_.get(), CURLOPT_PROXY, "");
        curl_easy_setopt(curl_.get(), CURLOPT_URL, (url + kPath).c_str());
        curl_easy_setopt(curl_.get(), CURLOPT_HTTPHEADER, headers_.get());
        curl_easy_setopt(curl_.get(), CURLOPT_CUSTOMREQUEST, "PUT");
        curl_easy_setopt(curl_.get(), CURLOPT_POSTFIELDS, R"({"enable":1})");
        curl_easy_setopt(
            curl_.get(), CURLOPT_WRITEFUNCTION,
            +[](char*, std::size_t size, std::size_t count, void*) { return size * count; });
    }
    double once() const {
        const auto begin = Clock::now();
        long status = 0;
        if (curl_easy_perform(curl_.get()) != CURLE_OK ||
            curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status) != CURLE_OK || status != 200) {
            throw std::runtime_error("the device refuses a bare change");
        }
        return micros(Clock::now() - begin);
    }

private:
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl_;
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers_;
};

}  // namespace

Lines measureLoopback() {
    constexpr int kRounds = 300;
    Moment told, taken;  // outlive who reaches them
    std::atomic<bool> listening{false};
    devicesim::Device device;
    panel::Session session({.deviceUrl = device.url()});
    const panel::Component& component = panel::componentNamed("SwitchMode");
    const panel::Kind& kind = *component.kind(1);
    const std::any change = kind.parse(R"({"enable":1})");
    session.subscribe(component, kind, "bench", [&](const std::any&) {
        if (listening.exchange(false)) {
            told.reach();
        }
    });
    session.start();
    session.login(std::chrono::seconds(20));
    const Echo echo;
    const BareChange bare(device.url(), session.user().token());

    int value = 0;
    std::vector<Latency> all;
    all.push_back({"device's change to subscriber", [&] {
                       listening = true;
                       const nlohmann::json body{{"pointer", "/screen/global/swap/enable"}, {"value", value ^= 1}};
                       const auto begin = Clock::now();
                       device.control("POST", "/sim/change", body.dump());
                       return micros(told.wait() - begin);
                   }});
    all.push_back({"set to reply", [&] {
                       const auto begin = Clock::now();
                       session.set(component, kind, "bench", -1, change, [&taken](bool) { taken.reach(); });
                       return micros(taken.wait() - begin);
                   }});
    all.push_back({"bare libcurl change", [&bare] { return bare.once(); }});
    all.push_back({"bare socket round trip", [&echo] { return echo.once(); }});
    sample(all, kRounds, std::chrono::milliseconds(8));
    session.stop();
    Lines lines;
    for (Latency& each : all) {
        lines.push_back({each.name + ", median", quantile(each.times, 0.5) / 1000, " ms"});
        lines.push_back({each.name + ", 99th percentile", quantile(each.times, 0.99) / 1000, " ms"});
    }
    return lines;
}

}  // namespace bench
