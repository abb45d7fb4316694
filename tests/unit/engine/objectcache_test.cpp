#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using lcdtest::Inbox;
using lcdtest::Monitor;

enum class Kind : std::int32_t { number = 1, text = 2, nobody = 3 };

struct Mirror {
    int number = 0;
};

/// Its fetch counts up; a test may make it fail or wait.
class NumberGetter : public ObjectCacheImpl<Mirror, int, Kind> {
public:
    using Base = ObjectCacheImpl<Mirror, int, Kind>;

    NumberGetter() {
        registerNotifySubCacheCallback();
        channelOfTest = &monitor;
    }

    void reloadCache(const RequestData& request) override {
        lastKey = request.key;
        fetchCache(&fetch, "get number fail");
    }
    void checkCacheDirtied(const RequestData& request) override { checked.push_back(request.key); }
    std::string objectTypeName() const override { return "number"; }
    void registerNotifySubCacheCallback() override {
        bindHandler(Kind::number, &NumberGetter::notifyNumber);
        bindHandler(Kind::text, &NumberGetter::notifyText);
    }
    void notifyNumber(const RequestData& request) { deliverPart(&Mirror::number, request); }
    void notifyText(const RequestData& request) { deliverField(&NumberGetter::text, request); }

    bool decodeNumber(const std::string& body, AfterReport after) {
        return mergeReport(
            body, &decode, [](Mirror& mirror, const int& number) { mirror.number = number; }, Kind::number, after);
    }
    static bool decode(const std::string& body, int& out) {
        out = static_cast<int>(body.size());
        return !body.empty();
    }

    bool dirty() const { return cacheDirty; }

    static bool fetch(LCD::Comm::IHttpChannel*, Mirror& out) {
        channelOfTest->change([] { ++fetches; });
        channelOfTest->waitUntil([] { return !held; });
        if (failing) {
            return false;
        }
        out.number = fetches;
        return true;
    }

    std::string text = "t";
    int lastKey = 0;
    std::vector<int> checked;
    Monitor monitor;

    static inline Monitor* channelOfTest = nullptr;
    static inline int fetches = 0;
    static inline bool held = false;
    static inline std::atomic<bool> failing{false};
};

class ObjectCacheTest : public testing::Test {
protected:
    ObjectCacheTest() {
        NumberGetter::fetches = 0;
        NumberGetter::held = false;
        NumberGetter::failing = false;
    }
    ~ObjectCacheTest() override { getter.stopReloadTask(); }

    int fetches() const {
        return getter.monitor.read([] { return NumberGetter::fetches; });
    }
    void hold(bool on) {
        getter.monitor.change([on] { NumberGetter::held = on; });
    }
    bool waitForFetches(int count) const {
        return getter.monitor.waitUntil([count] { return NumberGetter::fetches >= count; });
    }

    NumberGetter getter;
    Inbox inbox;
};

TEST_F(ObjectCacheTest, fetchesAtTheFirstRequestAndNotBefore) {
    getter.startReloadTask();
    getter.stopReloadTask();
    EXPECT_EQ(fetches(), 0);
    EXPECT_TRUE(getter.dirty());

    getter.startReloadTask();
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback(), 7);
    EXPECT_EQ(inbox.at<int>(0), 1);
    EXPECT_EQ(getter.lastKey, 7);
    EXPECT_FALSE(getter.dirty());
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    EXPECT_EQ(inbox.at<int>(1), 1) << "a clean mirror is not fetched again";
    getter.setCacheDirty();
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    EXPECT_EQ(inbox.at<int>(2), 2);
    getter.stopReloadTask();
    EXPECT_EQ(getter.checked, (std::vector<int>{7, -1, -1})) << "keys are asked about before each request";
}

TEST_F(ObjectCacheTest, requestsQueuedTogetherShareAReloadAndAreDeliveredApart) {
    NumberGetter::failing = true;  // the mirror stays dirty, so that every further reload would show
    std::chrono::steady_clock::time_point times[2];
    int delivered = 0;
    for (int i = 0; i < 2; ++i) {
        getter.notifyCacheChangedWithLambda(
            "a", Kind::number, [&](const std::any&) { times[delivered++] = std::chrono::steady_clock::now(); });
    }
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    getter.startReloadTask();
    ASSERT_TRUE(inbox.waitFor(1));
    EXPECT_EQ(fetches(), 1);
    EXPECT_EQ(delivered, 2);
    EXPECT_GE(times[1] - times[0], std::chrono::milliseconds(5));
}

TEST_F(ObjectCacheTest, aPostDuringADeliveryMakesTheNextRequestReload) {
    NumberGetter::failing = true;
    getter.notifyCacheChangedWithLambda("a", Kind::number, [this](const std::any&) {
        getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    });
    getter.startReloadTask();
    ASSERT_TRUE(inbox.waitFor(1));
    EXPECT_EQ(fetches(), 2);
}

TEST_F(ObjectCacheTest, aFailedFetchDeliversWhatThereIsAndIsTriedAgain) {
    lcdtest::LogCapture log;
    getter.startReloadTask();
    NumberGetter::failing = true;
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    EXPECT_EQ(inbox.at<int>(0), 0);
    EXPECT_TRUE(getter.dirty());
    EXPECT_TRUE(log.contains("warning: get number fail \n //objectcache_test.cpp:reloadCache()#"));
    NumberGetter::failing = false;
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    EXPECT_EQ(inbox.at<int>(1), 2);
}

TEST_F(ObjectCacheTest, aReportIsMergedAndToldAndMayDecideWhetherToFetch) {
    getter.setCacheDirty();
    EXPECT_TRUE(getter.decodeNumber("123", AfterReport::tellWhenDecoded));
    EXPECT_TRUE(getter.dirty());
    EXPECT_TRUE(getter.decodeNumber("1234", AfterReport::dirtyUnlessDecoded));
    EXPECT_FALSE(getter.dirty());
    EXPECT_FALSE(getter.decodeNumber("", AfterReport::tellWhenDecoded));
    EXPECT_FALSE(getter.dirty());
    EXPECT_FALSE(getter.decodeNumber("", AfterReport::dirtyUnlessDecoded));
    EXPECT_TRUE(getter.dirty());

    NumberGetter::failing = true;
    getter.appendRequestCallBack("a", Kind::number, inbox.callback());
    getter.startReloadTask();
    EXPECT_EQ(inbox.at<int>(0), 4) << "the first delivery already shows the second report";
    EXPECT_EQ(inbox.at<int>(1), 4);
    getter.stopReloadTask();
    EXPECT_EQ(inbox.count(), 2u) << "what can't be read is told to nobody";
    getter.decodeNumber("12", AfterReport::dirtyUnlessDecoded);
    getter.reloadCache({});
    EXPECT_TRUE(getter.dirty()) << "a fetch that a report overtook and that fails is made again";
}

TEST_F(ObjectCacheTest, aDeliveryGoesToWhomItIsFor) {
    lcdtest::LogCapture log;
    std::vector<std::string> order;
    const auto note = [&order](std::string name) {
        return [&order, name = std::move(name)](const std::any&) { order.push_back(name); };
    };
    getter.appendRequestCallBack("b", Kind::number, note("b"));
    getter.appendRequestCallBack("b", Kind::text, note("b-text"));
    getter.appendRequestCallBack("a", Kind::number, note("a"));
    getter.appendRequestCallBack("a", Kind::number, note("a-second"));
    EXPECT_TRUE(log.contains("warning: Memory Cache number a 1 Callback is register. \n //"));
    getter.startReloadTask();

    getter.notifyCacheChanged("", Kind::number);
    getter.notifyCacheChanged("b", Kind::number);
    getter.notifyCacheChanged("nobody", Kind::number);
    getter.notifyCacheChanged("", Kind::text);
    getter.notifyCacheChanged("", Kind::nobody);
    getter.notifyCacheChangedWithLambda("a", Kind::number, note("own"));
    getter.notifyCacheChangedWithLambda("z", Kind::number, inbox.callback());
    ASSERT_TRUE(inbox.waitFor(1));
    EXPECT_EQ(order, (std::vector<std::string>{"a", "b", "b", "b-text", "own"}));
}

TEST_F(ObjectCacheTest, subscribersOfADeliveryShareOneCopy) {
    Inbox other;
    getter.appendRequestCallBack("a", Kind::text, inbox.callback());
    getter.appendRequestCallBack("b", Kind::text, other.callback());
    getter.startReloadTask();
    getter.notifyCacheChanged("", Kind::text);
    getter.notifyCacheChanged("a", Kind::text);
    ASSERT_TRUE(inbox.waitFor(2));
    EXPECT_EQ(inbox.shared<std::string>(0), other.shared<std::string>(0));
    EXPECT_NE(inbox.shared<std::string>(0), inbox.shared<std::string>(1));
    EXPECT_NE(inbox.shared<std::string>(0).get(), &getter.text);
}

TEST_F(ObjectCacheTest, aStopServesWhatIsQueuedInADrainAndNothingAfter) {
    getter.startReloadTask();
    hold(true);
    for (int i = 0; i < 4; ++i) {
        getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    }
    ASSERT_TRUE(waitForFetches(1));
    std::thread stopper([this] { getter.stopReloadTask(); });
    hold(false);
    stopper.join();
    EXPECT_EQ(inbox.count(), 4u);
    getter.notifyCacheChangedWithLambda("a", Kind::number, inbox.callback());
    EXPECT_EQ(inbox.count(), 4u) << "it waits in the queue";
    getter.startReloadTask();
    EXPECT_TRUE(inbox.waitFor(5)) << "a new start serves it";
}

TEST_F(ObjectCacheTest, aStopBeforeAnyStartDoesNothing) {
    lcdtest::LogCapture log;
    getter.stopReloadTask();
    EXPECT_TRUE(log.lines().empty());
    getter.startReloadTask();
    getter.stopReloadTask();
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_TRUE(
        log.contains("info: Memory Cache Reload number task starting \n //objectcacheimpl.h:reloadCacheTask()#"));
    EXPECT_TRUE(log.contains("info: Memory Cache Reload number task stoped \n //"));
}

}  // namespace
