// The simulated device by itself, as its clients see it over HTTP.
#include "devicesim/devicesim.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <latch>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/devicesimclient.h"
#include "tests/support/processguard.h"
#include "tests/support/program.h"

namespace {

using devicesim::Device;
using devicesim::Options;
using lcdtest::DeviceClient;
using lcdtest::Event;
using lcdtest::eventually;
using lcdtest::kLogin;
using lcdtest::kStream;
using lcdtest::Program;
using lcdtest::ReportReader;
using nlohmann::json;
using testing::HasSubstr;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kSwap = "/zelto/v1/screen/global/swap";
constexpr const char* kEffect = "/zelto/v1/screen/global/switch-effect";
constexpr const char* kActive = "/zelto/v1/screen/global/active-effect";

TEST(DeviceSim, OnlyValidTokensOpenThePaths) {
    Device device({.tokenLifetime = 1h, .tokens = 2});
    DeviceClient stranger(device, false);
    EXPECT_EQ(stranger.statusOf(kSwap), 401);
    EXPECT_EQ(stranger.statusOf(kStream), 401);

    DeviceClient first(device);
    DeviceClient second(device);
    EXPECT_EQ(first.statusOf(kSwap), 200);
    EXPECT_EQ(second.statusOf(kSwap), 200);
    const DeviceClient third(device);
    EXPECT_EQ(first.statusOf(kSwap), 401) << "the oldest beyond the bound is forgotten";

    Device forgetful({.tokenLifetime = 200ms});
    DeviceClient client(forgetful);
    EXPECT_TRUE(eventually([&] { return client.statusOf(kSwap) == 401; }));
}

TEST(DeviceSim, BadRequestsChangeNothing) {
    Device device({.largestBody = 4096});
    DeviceClient client(device);
    const json before = client.get("/sim/state");
    const struct {
        const char *verb, *path;
        std::string body;
        int status;
    } kCases[] = {
        {"POST", kLogin, R"({"username":"admin","password":"x"})", 200},
        {"POST", kLogin, R"({"username":"admin","password":7})", 200},
        {"POST", kLogin, "[]", 200},
        {"PUT", kSwap, "", 200},
        {"PUT", kSwap, R"({"enable":)", 200},
        {"PUT", kSwap, R"({"enabled":1})", 200},
        {"PUT", kSwap, R"({"enable":"1"})", 200},
        {"PUT", kSwap, "[1]", 200},
        {"POST", "/sim/report", R"({"id":"1","body":)" + std::string(70, '[') + std::string(70, ']') + "}", 200},
        {"PUT", kSwap, std::string(5000, ' ') + R"({"enable":0})", 413},
        {"PUT", kEffect, R"({"switchEffect":{"time":1}})", 200},
        {"PUT", kEffect, R"({"switchEffect":{"time":1,"type":1,"dip":{"source":5},"wipe":{"posX":[]}}})", 200},
        {"POST", kActive, R"({"type":4})", 200},
        {"POST", "/zelto/v1/screen/global/audio-follow", R"({"type":3,"enable":1})", 200},
        {"POST", kSwap, R"({"enable":0})", 405},
        {"PUT", "/zelto/v1/none", R"({"enable":0})", 404},
        {"POST", "/sim/change", R"({"pointer":"/custom/none","value":1})", 200},
        {"POST", "/sim/change", R"({"pointer":"custom","value":1})", 200},
        {"POST", "/sim/change", R"({"pointer":"","value":{}})", 200},
        {"POST", "/sim/change", R"({"pointer":"/custom/mode","value":{}})", 200},
        {"POST", "/sim/report", R"({"id":"0x71201","body":{}})", 200},
        {"POST", "/sim/restart", R"({"state":"other"})", 200},
    };
    for (const auto& each : kCases) {
        SCOPED_TRACE(fmt::format("{} {} {}", each.verb, each.path, each.body.substr(0, 80)));
        const json reply = client.send(each.verb, each.path, each.body);
        EXPECT_EQ(client.status, each.status);
        EXPECT_NE(reply["code"], 0);
        EXPECT_NE(reply["message"], "");
    }
    EXPECT_EQ(client.send("GET", kSwap, "a body where none is expected")["code"], 0);
    EXPECT_EQ(client.statusOf(kSwap), 200) << "and the next request is found behind it";
    EXPECT_EQ(client.get("/sim/state"), before);
    EXPECT_EQ(client.get("/sim/counters")["reportsSent"], 0);
}

TEST(DeviceSim, EveryReaderGetsTheReportsInTheOrderOfTheChanges) {
    Device device;
    DeviceClient observer(device);
    ReportReader first(device, observer.token);
    ReportReader second(device, observer.token);
    constexpr int kThreads = 8;
    constexpr int kChanges = 50;
    lcdtest::inThreads(kThreads, [&device](unsigned thread) {
        DeviceClient client(device);
        for (int i = 0; i < kChanges; ++i) {
            client.send("PUT", kSwap, json{{"enable", i}}.dump(), static_cast<int>(thread));
        }
    });
    for (ReportReader* reader : {&first, &second}) {
        const auto events = reader->events(kThreads * kChanges);
        ASSERT_EQ(events.size(), std::size_t{kThreads * kChanges});
        int nexts[kThreads] = {};
        for (std::size_t i = 0; i < events.size(); ++i) {
            EXPECT_EQ(events[i].number, static_cast<int>(i) + 1);
            EXPECT_EQ(json::parse(events[i].body)["enable"], nexts[events[i].sequence]++);
        }
        EXPECT_EQ(json::parse(events.back().body), observer.get(kSwap));
    }
    observer.send("POST", "/sim/report", R"({"id":"ABC","body":"two\r\nlines\n"})");
    const Event last = first.events(kThreads * kChanges + 1).back();
    EXPECT_EQ(last.id, "abc");
    EXPECT_EQ(last.body, "two\nlines\n");
}

TEST(DeviceSim, StreamsAreBoundedInNumberAndLength) {
    Device device({.streams = 2, .streamQueue = 64 << 10, .ioTimeout = 1h});
    DeviceClient client(device);
    ReportReader good(device, client.token);
    std::latch readOn(1);
    ReportReader stuck(device, client.token, [&readOn] { readOn.wait(); });
    EXPECT_EQ(client.statusOf(kStream), 503);

    const std::string report = json{{"id", "1"}, {"body", std::string(32 << 10, 'x')}}.dump();
    std::size_t sent = 0;
    while (client.get("/sim/counters")["streamsOpen"] != 1 && sent < 1000) {
        client.send("POST", "/sim/report", report);
        ASSERT_EQ(good.events(++sent).size(), sent);
    }
    EXPECT_LT(sent, 1000U) << "the stream that nobody reads must be closed";
    readOn.count_down();
    EXPECT_TRUE(stuck.ended());
}

TEST(DeviceSim, StopsAtOnceAndLeavesNothing) {
    const lcdtest::ProcessGuard guard;
    for (int i = 0; i < 5; ++i) {
        std::optional<Device> device(std::in_place, Options{.heartbeat = 1h, .keepAlive = 1h});
        DeviceClient idle(*device);
        std::vector<std::unique_ptr<ReportReader>> readers;
        for (int r = 0; r < 3; ++r) {
            readers.push_back(std::make_unique<ReportReader>(*device, idle.token));
        }
        const auto start = std::chrono::steady_clock::now();
        device.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - start, lcdtest::kPromptly);
        EXPECT_TRUE(std::all_of(readers.begin(), readers.end(), [](const auto& reader) { return reader->ended(); }));
    }
}

TEST(DeviceSim, AStartThatFailsSaysWhy) {
    const lcdtest::TempFolder temp;
    const fs::path folder = temp / "data";
    fs::copy(devicesim::defaultDataFolder(), folder);
    const auto expectFailure = [](const Options& options, const auto&... named) {
        EXPECT_THAT([&] { Device device(options); },
                    testing::ThrowsMessage<std::runtime_error>(testing::AllOf(HasSubstr(named)...)));
    };
    const auto withScreen = [&](const std::string& text, const auto&... named) {
        std::ofstream(folder / "screen.json") << text;
        expectFailure({.dataFolder = folder}, named...);
    };
    json other = json::parse(std::ifstream(folder / "screen.json"));
    other["global"]["switch-effect"] = {{"switchEffect", {{"type", 1}}}};
    Device device;
    expectFailure({.port = device.port()}, "Address already in use");
    expectFailure({.bind = "no such host"}, "no such host");
    withScreen("{\n\"global\": }", "screen.json", "line 2");
    withScreen(other.dump(), "/screen/global/switch-effect", "71205");
    withScreen("{}", "/screen/global/swap", kSwap);
}

TEST(DeviceSimProgram, RunsUntilASignalAndRefusesBadInputInOneLine) {
    const lcdtest::TempFolder folder;
    const std::string two = folder / "two.json";
    const std::string bad = folder / "bad.json";
    std::ofstream(two) << R"([{"kind":"code"},{"kind":"cut","path":"/none"}])";
    std::ofstream(bad) << R"([{"kind":"none"}])";
    for (const int signal : {SIGTERM, SIGINT}) {
        Program program("lcddevicesim", R"(--port 0 --heartbeat-ms 50 --fault '{"kind":"endless"}' --faults )" + two);
        const std::string url = program.line();
        ASSERT_THAT(url, testing::StartsWith("http://127.0.0.1:"));
        const auto reply = httplib::Client(url.substr(0, url.size() - 1)).Get("/sim/faults");
        ASSERT_TRUE(reply) << url;
        const json rules = json::parse(reply->body)["data"];
        std::string kinds;
        for (const json& rule : rules) {
            kinds += rule["kind"].get<std::string>() + " ";
        }
        EXPECT_EQ(kinds, "endless code cut ");
        program.signal(signal);
        EXPECT_EQ(program.exitStatus(), 0);
    }
    for (const auto& [options, named] : {std::pair<std::string, const char*>("--port 65536", "--port"),
                                         {"--bogus", "--bogus"},
                                         {"--data /nonexistent", "/nonexistent"},
                                         {"--faults " + bad, "bad.json: rule 1: kind must be one of"}}) {
        Program program("lcddevicesim", options);
        EXPECT_THAT(program.line(), AllOf(testing::StartsWith("lcddevicesim: "), HasSubstr(named)));
        EXPECT_EQ(program.line(), "");
        EXPECT_EQ(program.exitStatus(), 2);
    }
}

}  // namespace
