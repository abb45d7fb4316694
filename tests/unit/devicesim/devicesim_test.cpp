// The simulated device by itself, as its clients see it over HTTP.
#include "devicesim/devicesim.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <httplib.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <latch>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "devicesim/actions.h"
#include "devicesim/core.h"
#include "devicesim/families/families.h"
#include "tests/support/devicesimclient.h"
#include "tests/support/processguard.h"

namespace {

using devicesim::Device;
using devicesim::Options;
using lcdtest::DeviceClient;
using lcdtest::Event;
using lcdtest::eventually;
using lcdtest::kLogin;
using lcdtest::kStream;
using lcdtest::ReportReader;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kSwap = "/zelto/v1/screen/global/swap";
constexpr const char* kEffect = "/zelto/v1/screen/global/switch-effect";

TEST(DeviceSim, OnlyValidTokensOpenThePaths) {
    Device device({.tokenLifetime = 1h, .tokens = 2});
    DeviceClient stranger(device, false);
    for (const char* credentials : {R"({"username":"admin","password":"x"})", R"({"username":"admin"})",
                                    R"({"username":"admin","password":7})", "", "[]"}) {
        const json reply = stranger.send("POST", kLogin, credentials);
        EXPECT_EQ(stranger.status, 200) << credentials;
        EXPECT_NE(reply["code"], 0) << credentials;
        EXPECT_NE(reply["message"], "") << credentials;
    }
    EXPECT_EQ(stranger.statusOf(kSwap), 401);
    EXPECT_EQ(stranger.statusOf(kStream), 401);

    DeviceClient first(device);
    DeviceClient second(device);
    EXPECT_EQ(first.statusOf(kSwap), 200);
    EXPECT_EQ(second.statusOf(kSwap), 200);
    const DeviceClient third(device);
    EXPECT_EQ(first.statusOf(kSwap), 401) << "the oldest beyond the bound is forgotten";
    stranger.send("POST", "/sim/expire");
    EXPECT_EQ(second.statusOf(kSwap), 401);

    Device forgetful({.tokenLifetime = 200ms});
    DeviceClient client(forgetful);
    EXPECT_TRUE(eventually([&] { return client.statusOf(kSwap) == 401; }));
}

TEST(DeviceSim, AChangeIsKeptAndReportedWithItsSource) {
    Device device;
    DeviceClient client(device);
    ReportReader reader(device, client.token);
    ReportReader other(device, DeviceClient(device).token);
    json parameters = client.get(kEffect)["switchEffect"];
    for (const char* effect : {"fadeInOut", "dip", "wipe", "dve"}) {
        parameters[effect].erase("time");
        parameters[effect].erase("type");
    }
    const auto effectReport = [&](const json& patch) { return parameters.merge_patch(patch), parameters.dump(); };
    const struct {
        const char *verb, *path, *body, *report;
        std::string reported;
        const char* from;
        json shown;  // a patch that must change nothing
    } kCases[] = {
        {"PUT", kSwap, R"({"enable":0,"unknown":1})", "71201", R"({"enable":0})", kSwap, {{"enable", 0}}},
        {"POST",
         "/zelto/v1/screen/global/transition-preview",
         R"({"enable":1})",
         "71207",
         R"({"enable":1})",
         "/zelto/v1/screen/global/transition-preview",
         {{"enable", 1}}},
        {"POST",
         "/zelto/v1/screen/global/audio-follow",
         R"({"type":2,"enable":1})",
         "7115e",
         R"({"enable":1,"type":2})",
         "/zelto/v1/system/detail",
         {{"freezeAudioFollow", 1}, {"ftbAudioFollow", 1}}},
        // Of an effect that isn't active: its own time changes, the active one's stays.
        {"PUT",
         kEffect,
         R"({"switchEffect":{"time":950,"type":3,"wipe":{"posX":7},"dip":{"source":4}}})",
         "71205",
         effectReport({{"time", 950}, {"type", 3}, {"wipe", {{"posX", 7}}}, {"dip", {{"source", 4}}}}),
         kEffect,
         {{"switchEffect",
           {{"time", 500},
            {"type", 1},
            {"wipe", {{"posX", 7}, {"posY", 50}, {"time", 950}}},
            {"dip", {{"source", 4}, {"time", 1000}}}}}}},
        {"POST",
         "/zelto/v1/screen/global/active-effect",
         R"({"type":3})",
         "71209",
         R"({"type":3})",
         kEffect,
         {{"switchEffect", {{"type", 3}, {"time", 950}}}}},
        {"PUT",
         kEffect,
         R"({"switchEffect":{"time":300,"type":3}})",
         "71205",
         effectReport({{"time", 300}, {"type", 3}}),
         kEffect,
         {{"switchEffect", {{"type", 3}, {"time", 300}, {"wipe", {{"time", 300}}}}}}},
        // No effect of that type: parameters alone.
        {"PUT",
         kEffect,
         R"({"switchEffect":{"time":1,"type":4,"dve":{"softness":3}}})",
         "71205",
         effectReport({{"time", 1}, {"type", 4}, {"dve", {{"softness", 3}}}}),
         kEffect,
         {{"switchEffect", {{"type", 3}, {"time", 300}, {"dve", {{"softness", 3}, {"time", 600}}}}}}},
    };
    std::size_t count = 0;
    for (const auto& each : kCases) {
        SCOPED_TRACE(fmt::format("{} {}", each.path, each.body));
        ++count;
        EXPECT_EQ(client.send(each.verb, each.path, each.body, static_cast<int>(40 + count))["code"], 0);
        json shown = client.get(each.from);
        const json patched = (shown.merge_patch(each.shown), shown);
        EXPECT_EQ(client.get(each.from), patched);

        const auto events = reader.events(count);
        ASSERT_EQ(events.size(), count);
        const Event& event = events.back();
        EXPECT_EQ(event.id, each.report);
        EXPECT_EQ(event.body, each.reported);
        EXPECT_EQ(event.token, client.token);
        EXPECT_EQ(event.sequence, 40 + static_cast<int>(count));
        EXPECT_EQ(event.number, static_cast<int>(count));
        EXPECT_EQ(event.epoch, events.front().epoch);
    }
    EXPECT_EQ(other.events(count).size(), count) << "each reader gets all";
    EXPECT_EQ(client.get("/sim/counters")["reportsSent"], count);
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
        {"PUT", kSwap, "", 200},
        {"PUT", kSwap, R"({"enable":)", 200},
        {"PUT", kSwap, R"({"enabled":1})", 200},
        {"PUT", kSwap, R"({"enable":"1"})", 200},
        {"PUT", kSwap, "[1]", 200},
        {"POST", "/sim/report", R"({"id":"1","body":)" + std::string(70, '[') + std::string(70, ']') + "}", 200},
        {"PUT", kSwap, std::string(5000, ' ') + R"({"enable":0})", 413},
        {"PUT", kEffect, R"({"switchEffect":{"time":1}})", 200},
        {"PUT", kEffect, R"({"switchEffect":{"time":1,"type":1,"dip":{"source":5},"wipe":{"posX":[]}}})", 200},
        {"POST", "/zelto/v1/screen/global/active-effect", R"({"type":4})", 200},
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

TEST(DeviceSim, TheDeviceReportsItsOwnChanges) {
    Device device;
    DeviceClient client(device);
    ReportReader reader(device, client.token);
    const auto change = [&](const std::string& pointer, const json& value) {
        return client.send("POST", "/sim/change",
                           json{{"pointer", pointer}, {"value", value}}.dump())["data"]["reports"];
    };
    EXPECT_THAT(change("/custom/softwareName", "A"), ElementsAre("e0100"));
    EXPECT_THAT(change("/system/detail/ftbAudioFollow", 0), ElementsAre("7115e"));
    EXPECT_THAT(change("/screen/global/swap", {{"enable", 0}}), ElementsAre("71201"));
    EXPECT_THAT(change("/screen/global/switch-effect/switchEffect/dip/time", 40), ElementsAre("71205"));
    EXPECT_THAT(change("/screen/global/switch-effect/switchEffect/type", 2), ElementsAre("71209"));
    EXPECT_THAT(change("/system", {{"detail", {{"ftbAudioFollow", 1}, {"freezeAudioFollow", 0}}}}),
                ElementsAre("7115e"));
    client.send("POST", "/sim/report", R"({"id":"ABC","body":"two\r\nlines\n","token":"t","sequence":9})");

    const auto events = reader.events(8);
    ASSERT_EQ(events.size(), 8U);
    EXPECT_EQ(json::parse(events[0].body), client.get("/zelto/v1/custom"));
    const char* const kBodies[] = {R"({"enable":0,"type":1})",
                                   R"({"enable":0})",
                                   R"("time":40,"type":2)",
                                   R"({"type":2})",
                                   R"("type":2)",
                                   R"("type":1)"};
    for (std::size_t i = 0; i < std::size(kBodies); ++i) {
        EXPECT_THAT(events[i + 1].body, HasSubstr(kBodies[i]));
        EXPECT_EQ(events[i + 1].token, "device");
    }
    EXPECT_EQ(events[7].id, "abc");
    EXPECT_EQ(events[7].body, "two\nlines\n");
    EXPECT_EQ(events[7].token, "t");
    EXPECT_EQ(events[7].sequence, 9);
}

TEST(DeviceSim, ARestartClosesStreamsAndForgetsTokens) {
    Device device;
    DeviceClient client(device);
    client.send("PUT", kSwap, R"({"enable":0})");
    std::string lastEpoch;
    for (const auto& [body, enabled] : {std::pair("", 0), std::pair(R"({"state":"initial"})", 1)}) {
        ReportReader reader(device, client.token);
        client.send("POST", "/sim/restart", body);
        EXPECT_TRUE(reader.ended());
        EXPECT_EQ(client.statusOf(kSwap), 401);

        client.token = DeviceClient(device).token;
        EXPECT_EQ(client.get(kSwap)["enable"], enabled);
        ReportReader again(device, client.token);
        client.send("POST", "/sim/report", R"({"id":"1","body":""})");
        const auto events = again.events(1);
        ASSERT_EQ(events.size(), 1U);
        EXPECT_NE(std::exchange(lastEpoch, events[0].epoch), events[0].epoch);
        EXPECT_EQ(events[0].number, 1);
    }
}

TEST(DeviceSim, ReportsComeInTheOrderOfTheChanges) {
    Device device;
    DeviceClient observer(device);
    ReportReader reader(device, observer.token);
    constexpr int kThreads = 8;
    constexpr int kChanges = 50;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&device, t] {
            DeviceClient client(device);
            for (int i = 0; i < kChanges; ++i) {
                client.send("PUT", kSwap, fmt::format(R"({{"enable":{}}})", t * kChanges + i), t);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const auto events = reader.events(kThreads * kChanges);
    ASSERT_EQ(events.size(), std::size_t{kThreads * kChanges});
    std::vector<int> last(kThreads, -1);
    for (std::size_t i = 0; i < events.size(); ++i) {
        const int value = json::parse(events[i].body)["enable"];
        EXPECT_EQ(events[i].number, static_cast<int>(i) + 1);
        EXPECT_EQ(events[i].sequence, value / kChanges);
        EXPECT_GT(value, std::exchange(last[static_cast<std::size_t>(events[i].sequence)], value));
    }
    EXPECT_EQ(json::parse(events.back().body), observer.get(kSwap));
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
    const auto sendUntil = [&](const std::function<bool()>& done) {
        while (!done() && sent < 1000) {
            client.send("POST", "/sim/report", report);
            ASSERT_EQ(good.events(++sent).size(), sent);
        }
    };
    sendUntil([&] { return client.get("/sim/counters")["streamsOpen"] == 1; });
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
        EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
        EXPECT_TRUE(std::all_of(readers.begin(), readers.end(), [](const auto& reader) { return reader->ended(); }));
    }
}

TEST(DeviceSim, AStartThatFailsSaysWhy) {
    const lcdtest::TempFolder temp;
    const fs::path folder = temp / "data";
    fs::copy(devicesim::defaultDataFolder(), folder);
    const auto failure = [](const Options& options) -> std::string {
        try {
            Device device(options);
            return "started";
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    };
    const auto withScreen = [&](const char* text) {
        std::ofstream(folder / "screen.json") << text;
        return failure({.dataFolder = folder});
    };
    Device device;
    EXPECT_THAT(failure({.port = device.port()}),
                HasSubstr(fmt::format("port {}: Address already in use", device.port())));
    EXPECT_THAT(failure({.bind = "no such host"}), HasSubstr("no such host"));
    EXPECT_THAT(failure({.port = 70000}), HasSubstr("port"));
    EXPECT_THAT(failure({.dataFolder = "/nonexistent"}), HasSubstr("/nonexistent"));
    EXPECT_THAT(withScreen("{\n\"global\": }"), AllOf(HasSubstr("screen.json"), HasSubstr("line 2")));
    EXPECT_THAT(
        withScreen(R"({"global":{"swap":{},"switch-effect":{"switchEffect":{"type":1}},"transition-preview":{}}})"),
        AllOf(HasSubstr("/screen/global/switch-effect"), HasSubstr("71205")));
    EXPECT_THAT(withScreen("{}"), AllOf(HasSubstr("/screen/global/swap"), HasSubstr(kSwap)));
}

// The program beside this test, by a shell that tells its process id first.
class Program {
public:
    explicit Program(const std::string& options) {
        const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "lcddevicesim";
        pipe_ = ::popen(fmt::format("echo $$; exec {} {} 2>&1", program.string(), options).c_str(), "r");
        id_ = std::stoi(line());
    }
    std::string line() {
        std::array<char, 1024> text{};
        return std::fgets(text.data(), text.size(), pipe_) != nullptr ? text.data() : "";
    }
    void signal(int number) const { ::kill(id_, number); }
    int exitStatus() {
        const int status = ::pclose(pipe_);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    FILE* pipe_ = nullptr;
    int id_ = 0;
};

TEST(DeviceSimProgram, RunsUntilASignalAndRefusesBadInputInOneLine) {
    for (const int signal : {SIGTERM, SIGINT}) {
        Program program("--port 0 --heartbeat-ms 50");
        const std::string url = program.line();
        ASSERT_THAT(url, testing::StartsWith("http://127.0.0.1:"));
        EXPECT_TRUE(httplib::Client(url.substr(0, url.size() - 1)).Get("/sim/state"));
        program.signal(signal);
        EXPECT_EQ(program.exitStatus(), 0);
    }
    for (const auto& [options, named] : {std::pair("--port 65536", "--port"), std::pair("--bogus", "--bogus"),
                                         std::pair("--data /nonexistent", "/nonexistent")}) {
        Program program(options);
        EXPECT_THAT(program.line(), AllOf(testing::StartsWith("lcddevicesim: "), HasSubstr(named)));
        EXPECT_EQ(program.line(), "");
        EXPECT_EQ(program.exitStatus(), 2);
    }
}

// What rows for lists can do, seen on a table of a few.
TEST(DeviceSimRows, ListsArePagedMergedAndShortened) {
    using namespace devicesim;
    Core core(Options{},
              {{"GET", "/sim/layers", showPage, "/layers/list", "layerId"},
               {"PUT", "/sim/window", mergeEach, "/layers/list/*/window", "layerId", 0x8110b},
               {"PUT", "/sim/general", mergeEach, "/layers/list/*", "layerId", 0x81109},
               {"DELETE", "/sim/layers", removeEach, "/layers/list", "layerId", 0x81103, nullptr},
               {"POST", "/sim/change", controlRows()[2].action},
               {"GET", "/sim/stream", sessionRows()[1].action}},
              json::parse(R"({"layers":{"list":[{"layerId":4,"name":"a","window":{"x":1,"y":1}},
                                          {"layerId":7,"name":"b","window":{"x":2,"y":2}},
                                          {"layerId":9,"name":"c","window":{"x":3,"y":3}}]}})"));
    const auto call = [&](const char* verb, const char* path, const char* body,
                          std::multimap<std::string, std::string> query = {}) {
        return core.handle({.verb = verb, .path = path, .query = std::move(query), .body = body, .local = true});
    };
    const auto page = [&](std::multimap<std::string, std::string> query) {
        const json data = json::parse(call("GET", "/sim/layers", "", std::move(query)).body)["data"];
        std::string ids;
        for (const json& layer : data["list"]) {
            ids += layer["layerId"].dump();
        }
        return fmt::format("{} of {}, {} of {}: {}", data["page"].dump(), data["totalPage"].dump(),
                           data["count"].dump(), data["totalCount"].dump(), ids);
    };
    EXPECT_EQ(page({}), "1 of 1, 3 of 3: 479");
    EXPECT_EQ(page({{"page", "2"}, {"limit", "2"}}), "2 of 2, 1 of 3: 9");
    EXPECT_EQ(page({{"page", "3"}, {"limit", "2"}}), "3 of 2, 0 of 3: ");
    EXPECT_EQ(page({{"layerId", "7"}}), "1 of 1, 1 of 1: 7");

    const auto stream = call("GET", "/sim/stream", "").stream;
    const auto reported = [&] { return stream->next(0ms).value_or("closed"); };
    reported();
    call("PUT", "/sim/window", R"([{"layerId":9,"window":{"x":30}},{"layerId":4,"window":{"y":10}}])");
    EXPECT_THAT(reported(), HasSubstr("\ndata: [{\"layerId\":9,\"window\":{\"x\":30,\"y\":3}},"
                                      "{\"layerId\":4,\"window\":{\"x\":1,\"y\":10}}]\n"));
    for (const char* bad : {R"([{"layerId":4,"window":{"x":0}},{"layerId":5,"window":{"x":0}}])",
                            R"([{"layerId":4,"window":{"x":0}},{"layerId":7}])", R"({"layerId":4,"window":{"x":0}})"}) {
        EXPECT_NE(json::parse(call("PUT", "/sim/window", bad).body)["code"], 0) << bad;
    }
    EXPECT_EQ(reported(), ":\n") << "no report, nothing changed";
    call("POST", "/sim/change", R"({"pointer":"/layers/list/1/name","value":"B"})");
    EXPECT_THAT(reported(), AllOf(HasSubstr("event: 81109\n"), HasSubstr("\"name\":\"B\""), Not(HasSubstr("\"a\""))));
    call("DELETE", "/sim/layers", R"([{"layerId":4},{"layerId":9}])");
    EXPECT_THAT(reported(), HasSubstr("\ndata: [{\"layerId\":4},{\"layerId\":9}]\n"));
    EXPECT_EQ(page({}), "1 of 1, 1 of 1: 7");
}

}  // namespace
