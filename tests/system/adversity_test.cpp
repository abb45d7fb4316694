// What a device, a network or a page can do to the panel: each mirror is equal to the device again in the end, no
// change gets lost, and nothing is left behind.
#include <gtest/gtest.h>

#include <future>

#include "platform/ktp/knownsettings.h"
#include "tests/support/storm.h"

namespace {

using namespace lcdtest;
using panel::After;

constexpr const char* kSwap = "/zelto/v1/screen/global/swap";

/// A device and a panel that notice silence soon.
panel::SessionOptions lively() {
    panel::SessionOptions options;
    options.simulated.heartbeat = std::chrono::milliseconds(100);
    options.settings = {{&ktp::kHeartbeatMs, kSanitized ? 1000 : 100}, {&ktp::kLoginEveryMs, 20}};
    return options;
}

bool arrives(RealParts& real) {
    std::uint16_t status = 0;
    std::string reply;
    return real.session.channel().sendGetRequest(kSwap, nullptr, nullptr, nullptr, &status, &reply, 0);
}

TEST(Adversity, aDeviceThatRestartsAgainAndAgain) {
    RealParts real(lively());
    real.start();
    real.openAllPages();
    Storm storm(real, 30);
    std::mt19937 random(31);
    for (int i = 0; i < (kSanitized ? 10 : 100); ++i) {
        storm.run(std::uniform_int_distribution<int>(0, 6)(random));
        real.sim.send("POST", "/sim/restart");
        storm.loginOther();
    }
    EXPECT_TRUE(real.holds(After::resync));
}

TEST(Adversity, aStreamThatIsCutOrFallsSilent) {
    RealParts real(lively());
    real.start();
    real.openAllPages();
    int value = 1;
    for (const json& fault : {json{{"kind", "cutStream"}}, json{{"kind", "silent"}, {"ms", 1000}},
                              json{{"kind", "truncate"}, {"bytes", 9}, {"path", "71201"}, {"count", 1}},
                              json{{"kind", "drop"}, {"path", "71201"}, {"count", 1}}}) {
        const std::uint64_t before = real.session.status().receiver().gaps;
        real.sim.addFault(fault);
        real.sim.change("/screen/global/swap/enable", ++value);
        EXPECT_TRUE(eventually([&] { return real.session.status().receiver().gaps > before; })) << fault;
        real.sim.removeFaults();
        EXPECT_TRUE(real.holds(After::resync)) << fault;
    }
}

TEST(Adversity, malformedReports) {
    constexpr int kOfEach = kSanitized ? 100 : 1250;
    RealParts real;
    real.start();
    real.openAllPages();
    const auto storm = [&](const char* way, int count) {
        real.sim.addFault({{"kind", "malformed"}, {"way", way}, {"path", "71201"}});
        for (int i = 0; i < count; ++i) {
            real.sim.change("/screen/global/swap/enable", i);
        }
        real.sim.removeFaults();
    };
    for (const char* way :
         {"noReport", "badReport", "noNumber", "badNumber", "noSource", "badSource", "noBody", "badBody"}) {
        storm(way, kOfEach);
    }
    EXPECT_TRUE(eventually([&] {
        const auto now = real.session.status().receiver();
        return now.malformed + now.gated == 8 * kOfEach;
    }));
    storm("strangeLine", 1);  // the stream bears it
    const std::uint64_t connects = real.session.status().receiver().connects;
    storm("noEnd", 1);  // runs into the next event, which breaks the stream
    real.sim.change("/custom/softwareName", "next");
    EXPECT_TRUE(eventually([&] { return real.session.status().receiver().connects > connects; }));
    EXPECT_TRUE(real.holds(After::resync));
}

// All values in all places of what the reports carry.
void pushWrongTypes(RealParts& real, const std::string& id, const json& body) {
    const json places = body.flatten();
    for (const auto& place : places.items()) {
        for (const json& wrong : {json(), json(true), json(-7.5e300), json("text"), json::array(), json::object()}) {
            for (json::json_pointer at(place.key());; at.pop_back()) {
                json changed = body;
                changed[at] = wrong;
                real.sim.send("POST", "/sim/report", json{{"id", id}, {"body", changed}}.dump());
                if (at.empty()) {
                    break;
                }
            }
        }
    }
}

TEST(Adversity, aWrongTypeInEveryFieldOfEveryReport) {
    RealParts real(lively());
    real.start();
    real.openAllPages();
    const json state = real.sim.state();
    pushWrongTypes(real, "e0100", state["custom"]);
    pushWrongTypes(real, "7115e", {{"audio", {{"ftbAudioFollow", 1}, {"freezeAudioFollow", 1}}}});
    pushWrongTypes(real, "71205", state.at("/screen/global/switch-effect"_json_pointer));
    pushWrongTypes(real, "71209", {{"type", 1}});
    pushWrongTypes(real, "71201", {{"enable", 1}});
    pushWrongTypes(real, "71207", {{"enable", 1}});
    real.resync();
    EXPECT_TRUE(real.holds(After::resync));
}

TEST(Adversity, aReplyCutAtEveryByte) {
    RealParts real(lively());
    real.start();
    std::uint16_t status = 0;
    std::string whole;
    ASSERT_TRUE(real.session.channel().sendGetRequest(kSwap, nullptr, nullptr, nullptr, &status, &whole, 0));
    for (const bool quiet : {false, true}) {
        for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
            real.sim.addFault(
                {{"kind", "truncate"}, {"bytes", bytes}, {"quiet", quiet}, {"path", kSwap}, {"count", 1}});
            EXPECT_FALSE(arrives(real)) << bytes << ' ' << quiet;
        }
    }
    EXPECT_TRUE(real.holds(After::resync));
}

TEST(Adversity, bodiesWithoutMeasureAndRepliesWithoutEnd) {
    panel::SessionOptions options = lively();
    options.settings.emplace_back(&ktp::kRequestTimeoutMs, 1500);
    options.settings.emplace_back(&ktp::kLargestReply, 1 << 20);
    RealParts real(options);
    real.start();
    arrives(real);
    const std::size_t before = residentBytes();
    for (const json& fault :
         {json{{"kind", "oversized"}, {"bytes", 1LL << 30}}, json{{"kind", "endless"}},
          json{{"kind", "deep"}, {"levels", 100'000}}, json{{"kind", "drip"}, {"bytesPerSecond", 1}},
          json{{"kind", "garbage"}}, json{{"kind", "cut"}}}) {
        json rule = fault;
        rule.update({{"path", kSwap}});
        real.sim.addFault(rule);
        EXPECT_FALSE(arrives(real)) << fault;
        real.sim.removeFaults();
    }
    if (!kSanitized) {
        EXPECT_LT(residentBytes(), before + (8U << 20));
    }
    EXPECT_TRUE(real.holds(After::resync));
}

TEST(Adversity, aTokenThatExpiresUnderFiftyRequests) {
    constexpr int kRequests = 50;
    RealParts real;
    real.start();
    real.openAllPages();
    const std::uint64_t logins = real.session.status().session().loginsAsked;
    real.sim.send("POST", "/sim/expire");
    std::vector<std::future<bool>> pending;
    for (int i = 0; i < kRequests; ++i) {
        pending.push_back(std::async(std::launch::async, [&real, i] {
            const std::string body = json{{"namePrefix", "P"}, {"presetIdObj", {{"id", 100 + i}}}}.dump();
            std::uint16_t status = 0;
            std::string reply;
            return real.session.channel().sendPutRequest("/zelto/v1/preset/create-assign", nullptr, nullptr, &body,
                                                         &status, &reply, 0) &&
                   status == 200;
        }));
    }
    for (auto& each : pending) {
        EXPECT_TRUE(each.get());
    }
    EXPECT_EQ(real.session.status().session().loginsAsked, logins + 1);
    EXPECT_EQ(real.sim.state().at("/preset/list"_json_pointer).size(), 6U + kRequests);
    EXPECT_TRUE(real.holds(After::traffic));
}

TEST(Adversity, aSubscriberThatHoldsUpTheReportsUntilTheirQueueIsFull) {
    panel::SessionOptions options = lively();
    options.settings.emplace_back(&ktp::kQueuedReports, 16);
    Monitor monitor;
    bool held = true;
    RealParts real(options);
    real.session.subscribe(panel::componentNamed("SwitchMode"), RealParts::kindOf("SwitchMode"), "slow",
                           [&](const std::any&) { monitor.waitUntil([&] { return !held; }); });
    real.start();
    real.openAllPages();
    EXPECT_TRUE(eventually([&] {
        real.sim.change("/screen/global/swap/enable", 1);
        return real.session.status().receiver().overflowed > 0;
    }));
    monitor.change([&] { held = false; });
    EXPECT_TRUE(real.holds(After::resync));
}

TEST(Adversity, aStopAmidstAll) {
    const json faults[] = {{{"kind", "delay"}, {"ms", 60'000}, {"path", kSwap}},
                           {{"kind", "endless"}, {"path", kSwap}},
                           {{"kind", "drip"}, {"bytesPerSecond", 1}, {"path", kSwap}},
                           {{"kind", "silent"}},
                           {{"kind", "restart"}},
                           {{"kind", "refuse"}, {"ms", 3000}}};
    const char* const asked = std::getenv("LCD_TEST_STOPS");
    const std::size_t rounds = asked == nullptr ? std::size(faults) : std::strtoul(asked, nullptr, 10);
    for (std::size_t round = 0; round < rounds; ++round) {
        Results results;
        RealParts real;
        real.start();
        Storm(real, static_cast<unsigned>(50 + round)).run(5);
        const json& fault = faults[round % std::size(faults)];
        real.sim.addFault(fault);
        real.set("SwitchMode", 1, R"({"enable":1})", results);
        EXPECT_TRUE(eventually([&] {
            return !fault.contains("path") || real.sim.send("GET", "/sim/faults")[0]["fired"] > 0;
        })) << "a request hangs";
        const auto start = std::chrono::steady_clock::now();
        real.session.stop();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kSanitized ? 10'000 : 2500));
    }
}

}  // namespace
