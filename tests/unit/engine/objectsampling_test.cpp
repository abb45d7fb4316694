#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

#include <gtest/gtest.h>

#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using lcdtest::Monitor;
using lcdtest::Results;

enum class Kind : std::int32_t { a = 1, b = 2, failing = 3, unknown = 9 };

struct Value {
    int number = 0;
};

/// Its one handler notes what is sent; a test may make it wait.
class ValueSetter : public ObjectSamplingImpl<int, Kind> {
public:
    std::string objectTypeName() const override { return "value"; }
    void registerSetSubDataCallback() override {
        bindHandler(Kind::a, &ValueSetter::set);
        bindHandler(Kind::b, &ValueSetter::set);
        bindHandler(Kind::failing, &ValueSetter::fail);
    }
    bool set(const RequestData& request) {
        const auto value = recordOf<Value>(request, "Value");
        if (value == nullptr) {
            return false;
        }
        monitor.change([&] { sent.push_back({request.type, request.key, value->number}); });
        monitor.waitUntil([this] { return !held; });
        return true;
    }
    bool fail(const RequestData&) { return false; }

    struct Sent {
        Kind type;
        int key;
        int number;
        bool operator==(const Sent&) const = default;
    };

    bool stopping() const { return stopFlag; }

    Monitor monitor;
    std::vector<Sent> sent;
    bool held = false;
};

class ObjectSamplingTest : public testing::Test {
protected:
    ObjectSamplingTest() {
        setter.registerSetSubDataCallback();
        setter.startSamplingTask();
    }
    ~ObjectSamplingTest() override {
        hold(false);
        setter.stopSamplingTask();
    }

    void hold(bool on) {
        setter.monitor.change([&] { setter.held = on; });
    }
    bool waitForSent(std::size_t count) {
        return setter.monitor.waitUntil([&] { return setter.sent.size() >= count; });
    }
    void change(Kind type, int key, int number) {
        setter.asyncSetSubData({"page", type, key, std::make_shared<Value>(Value{number}), results.callback()});
    }
    /// Sends a first change and keeps the thread waiting for its reply.
    void occupy() {
        hold(true);
        change(Kind::a, 0, 0);
        ASSERT_TRUE(waitForSent(1));
    }

    ValueSetter setter;
    Results results;
};

TEST_F(ObjectSamplingTest, adjacentChangesOfOneItemMergeAndOthersKeepTheirPlace) {
    occupy();
    for (int i = 1; i <= 10; ++i) {
        change(Kind::a, 0, i);
    }
    change(Kind::a, 1, 1);
    change(Kind::b, 1, 2);
    change(Kind::a, 1, 3);
    change(Kind::a, 2, 4);
    change(Kind::a, 2, 5);
    hold(false);
    ASSERT_TRUE(results.waitFor(6));
    EXPECT_EQ(
        setter.sent,
        (std::vector<ValueSetter::Sent>{
            {Kind::a, 0, 0}, {Kind::a, 0, 10}, {Kind::a, 1, 1}, {Kind::b, 1, 2}, {Kind::a, 1, 3}, {Kind::a, 2, 5}}));
    EXPECT_EQ(results.count(), 6u) << "the callbacks of those in between are dropped";
}

TEST_F(ObjectSamplingTest, aFailureIsToldToTheGetterAndToTheRequester) {
    Monitor monitor;
    std::vector<std::pair<Kind, int>> failed;
    setter.stopSamplingTask();
    setter.setFailedCallback = [&](const std::string& name, Kind type, int key) {
        EXPECT_EQ(name, "");
        monitor.change([&] { failed.emplace_back(type, key); });
    };
    setter.startSamplingTask();
    setter.asyncSetSubData({"page", Kind::failing, 5, {}, results.callback()});
    ASSERT_TRUE(results.waitFor(1));
    EXPECT_EQ(results.all(), std::vector<bool>{false});
    EXPECT_EQ(failed, (std::vector<std::pair<Kind, int>>{{Kind::failing, 5}}));
}

TEST_F(ObjectSamplingTest, whatCantBeSentIsLoggedInItsOwnWords) {
    lcdtest::LogCapture log;
    setter.asyncSetSubData({"page", Kind::unknown, 0, {}, results.callback()});
    setter.asyncSetSubData({"page", Kind::a, 1, std::any(), results.callback()});
    setter.asyncSetSubData({"page", Kind::a, 2, std::make_shared<int>(1), results.callback()});
    setter.asyncSetSubData({"page", Kind::a, 3, std::shared_ptr<Value>(), results.callback()});
    ASSERT_TRUE(results.waitFor(3));
    EXPECT_EQ(results.all(), (std::vector<bool>{false, false, false})) << "the unknown type has no answer";
    EXPECT_TRUE(log.contains("warning: value sampling task Request Type=9 is not callback \n //"));
    EXPECT_TRUE(log.contains("warning: need type is Value but has void \n //objectsampling_test.cpp:set()#"));
    EXPECT_TRUE(log.contains("warning: need type is Value but has std::shared_ptr<int> \n //"));
    EXPECT_TRUE(log.contains("warning: val_ is null \n //objectsampling_test.cpp:set()#"));
    EXPECT_TRUE(setter.sent.empty());
}

TEST_F(ObjectSamplingTest, aStopSendsWhatWasTakenAndNothingElse) {
    lcdtest::LogCapture log;
    hold(true);
    change(Kind::a, 1, 1);
    change(Kind::b, 2, 2);
    ASSERT_TRUE(waitForSent(1));
    change(Kind::b, 8, 8);
    std::thread stopper([this] { setter.stopSamplingTask(); });
    ASSERT_TRUE(lcdtest::eventually([this] { return setter.stopping(); }));
    hold(false);
    stopper.join();
    EXPECT_NE(setter.sent.back(), (ValueSetter::Sent{Kind::b, 8, 8}));
    EXPECT_TRUE(log.contains("info: value sampling task stoped \n //"));
}

}  // namespace
