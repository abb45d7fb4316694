// The host runtime: life cycle, lookup, messages, signals.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <vector>

#include "ktp/imessagecenter.h"
#include "platform/ktp/host.h"
#include "platform/ktp/hostmessages.h"
#include "platform/ktp/pluginentry.h"
#include "tests/support/processguard.h"
#include "tests/support/testpart.h"

namespace {

using namespace lcdtest;
using ktp::Host;
using ktp::HostConfig;
using ktp::HostError;
using testing::ElementsAre;
using testing::HasSubstr;

class HostTest : public testing::Test {
protected:
    Act noting(const std::string& name) {
        return [this, name](const ktp::IMessage& message) {
            lines_.push_back(fmt::format("{} {:x}", name, message.id()));
            return 0;
        };
    }

    ProcessGuard guard_;
    std::vector<std::string> lines_;
    // A component of the test's plug-in writes there.
    const ktp::ComponentInfo journal_{[this] { return &lines_; }, [](void*) {}, [](void*) { return nullptr; },
                                      "test.journal", "{}"};
};

TEST_F(HostTest, LivesInFileOrderAndDiesInReverse) {
    const ktp::ComponentInfo first = part("test.first", noting("first"));
    const ktp::ComponentInfo last = part("test.last", noting("last"));
    HostConfig config;
    config.plugins = {plugin("testplugin")};
    add(config, journal_, "testJournal");
    add(config, first, "testFirst");
    config.components.push_back({"test.plugin.witness", "testWitness"});
    add(config, last);
    Host host(config);

    host.load();
    EXPECT_THAT(lines_, ElementsAre("plugin created"));
    EXPECT_TRUE(isMapped("libtestplugin.so"));
    host.start();
    EXPECT_NE(host.find<Part>("testFirst"), nullptr);
    EXPECT_NE(host.find<Part>("testWitness"), nullptr);
    EXPECT_EQ(host.find<Part>("nobody"), nullptr);
    EXPECT_EQ(host.components().at(2).plugin, "testplugin");
    EXPECT_TRUE(host.components().at(2).running);
    host.stop();

    EXPECT_THAT(lines_, ElementsAre("plugin created", "first ffff0001", "plugin ffff0001", "last ffff0001",
                                    "first fffffffd", "plugin fffffffd", "last fffffffd",  //
                                    "last fffffffe", "plugin fffffffe", "first fffffffe", "plugin deleted"));
    EXPECT_EQ(host.find<Part>("testFirst"), nullptr);
    EXPECT_TRUE(host.components().empty());
}

TEST_F(HostTest, StartThatFailsStopsWhatRanAndSaysWhy) {
    struct Case {
        const char* reason;
        ktp::ComponentInfo culprit;
        std::vector<std::string> left;
    };
    const auto refusal = [this](int answer) {
        return [this, answer](const ktp::IMessage& message) {
            noting("bad")(message);
            if (answer == 0 && message.id() == ktp::kSystemRun) {
                throw std::runtime_error("no device");
            }
            return answer;
        };
    };
    ktp::ComponentInfo outOfMemory = part("test.bad", noting("bad"));
    outOfMemory.creator = [] { return nullptr; };
    ktp::ComponentInfo broken = outOfMemory;
    broken.creator = []() -> void* { throw std::runtime_error("no screen"); };
    const std::vector<std::string> throughStop = {"good ffff0001", "bad ffff0001", "good fffffffd",
                                                  "bad fffffffd",  "bad fffffffe", "good fffffffe"};
    const Case cases[] = {
        {"host.toml:3: component \"test.bad\" can't be created: no memory", outOfMemory, {}},
        {"\"test.bad\" can't be created: no screen", broken, {}},
        {"\"test.bad\" doesn't start: it answered 7", part("test.bad", refusal(7)), throughStop},
        {"\"test.bad\" doesn't start: no device", part("test.bad", refusal(0)), throughStop},
        {"host.toml:3: component.name: no plug-in has a component \"test.bad\"", part("test.other", refusal(0)), {}}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.reason);
        lines_.clear();
        const ktp::ComponentInfo good = part("test.good", noting("good"));
        HostConfig config;
        add(config, good);
        config.ownComponents.push_back(&each.culprit);
        config.components.push_back({"test.bad", "", "host.toml:3: "});
        Host host(config);
        EXPECT_THAT([&] { host.start(); }, testing::ThrowsMessage<HostError>(HasSubstr(each.reason)));
        EXPECT_EQ(lines_, each.left);
    }
}

TEST_F(HostTest, OnlyOneHostIsLoadedAtATime) {
    const ktp::ComponentInfo one = part("test.one", noting("one"));
    HostConfig config;
    add(config, one);
    Host host(config);
    Host other(config);
    host.start();
    EXPECT_THROW(other.start(), HostError);
    host.stop();
    other.start();
    other.stop();
    host.start();
    EXPECT_EQ(std::count(lines_.begin(), lines_.end(), "one ffff0001"), 3);
}

TEST_F(HostTest, RefusesFilesThatAreNoPluginOrOneTooMany) {
    const TempFolder folder;
    const auto copyOf = [&folder](const char* name) {
        const std::filesystem::path copy = folder / plugin(name).file.filename().string();
        std::filesystem::copy_file(plugin(name).file, copy);
        return copy;
    };
    HostConfig config;
    config.components = {{"test.plugin.witness"}};
    for (const auto& [other, reason] :
         {std::pair<std::filesystem::path, std::string>{copyOf("ktspdlog"), "it lacks the function pluginit"},
          {copyOf("testplugin"), "both \"testplugin\" and \"testplugin\""},
          {LCD_TEST_HOST_FILE, "can't load a plug-in"}}) {
        config.plugins = {plugin("testplugin"), {other}};
        EXPECT_THAT([&] { Host(config).load(); }, testing::ThrowsMessage<HostError>(HasSubstr(reason)));
        EXPECT_FALSE(isMapped((folder / other.filename().string()).string().substr(1))) << other;
    }
}

void post(ktp::IMessageCenter& center, std::uint32_t id, std::uint32_t payload = 0) {
    ktp::IMessage* message = center.createMessage(id, "test", &payload, sizeof payload, 3);
    payload = 0;  // the message has a copy
    center.postMessage(&message, 9, 0);
    center.releaseMessage(message);
}

TEST_F(HostTest, PostedMessagesReachRunningComponentsOnly) {
    ktp::IMessageCenter* center = nullptr;
    const auto posting = [&](std::uint32_t onRun, std::uint32_t onStop) {
        return [&, onRun, onStop, note = noting(fmt::format("{:x}", onRun))](const ktp::IMessage& message) {
            note(message);
            if (message.id() == ktp::kSystemRun) {
                post(*center, onRun);
            } else if (message.id() == ktp::kSystemStop) {
                post(*center, onStop);
            }
            return 0;
        };
    };
    const ktp::ComponentInfo first = part("test.first", posting(0xa1, 0xe1));
    const ktp::ComponentInfo last = part("test.last", posting(0xa2, 0xe2));
    HostConfig config;
    add(config, first);
    add(config, last);
    Host host(config);
    host.load();
    center = host.find<ktp::IMessageCenter>(ktp::kMessageCenterName);
    host.start();
    host.stop();
    EXPECT_THAT(lines_, ElementsAre("a1 ffff0001", "a1 a1", "a2 ffff0001", "a1 a2", "a2 a2",  //
                                    "a1 fffffffd", "a2 fffffffd", "a2 fffffffe", "a1 e2", "a1 fffffffe"));
}

TEST_F(HostTest, MessagesFromManyThreadsArriveWholeAndOneAtATime) {
    constexpr std::uint32_t kThreads = 8;
    constexpr std::uint32_t kEach = 500;
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    std::array<std::uint32_t, kThreads> last{};  // message thread only
    std::atomic<int> wrong = 0;
    const ktp::ComponentInfo counter = part("test.counter", [&](const ktp::IMessage& message) {
        overlaps += inside++ == 0 ? 0 : 1;
        if (message.id() < kThreads) {
            const auto& whole = static_cast<const ktp::Message&>(message);
            const std::uint32_t next = ++last.at(message.id());
            wrong += whole.data().size() == sizeof next && std::memcmp(whole.data().data(), &next, sizeof next) == 0 &&
                             whole.sender() == std::string("test") && whole.flags() == 3
                         ? 0
                         : 1;
        }
        --inside;
        return 0;
    });
    HostConfig config;
    add(config, counter);
    Host host(config);
    host.start();
    auto& center = *host.find<ktp::IMessageCenter>(ktp::kMessageCenterName);
    inThreads(kThreads, [&center](std::uint32_t thread) {
        for (std::uint32_t number = 1; number <= kEach; ++number) {
            post(center, thread, number);
        }
    });
    center.postMessage(nullptr, 9, 0);
    center.releaseMessage(nullptr);
    host.stop();
    EXPECT_THAT(last, testing::Each(kEach)) << "what was posted before the stop is delivered before it";
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(wrong, 0);
}

}  // namespace
