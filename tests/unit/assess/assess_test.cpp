#include "lcdmemorycacheimpl/assess/assess.h"

#include <gtest/gtest.h>

#include "lcdprotocolimpl/layer/layerdetail.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = Assess::RequestCBType;
using LayerVerdict = std::vector<s_LayerAssessResult>;

constexpr const char* kWindow = "/zelto/v1/system/auxiliary/assess/layers-window";

class AssessTest : public testing::Test {
protected:
    void ask(CB kind, const std::any& question) { assess->asyncGetSubData("page", kind, question, inbox.callback()); }
    static std::shared_ptr<std::list<s_LayerWindow>> window(int layer) {
        return std::make_shared<std::list<s_LayerWindow>>(1, s_LayerWindow{layer, {1, 2, 3, 4}});
    }

    ProcessGuard guard;
    Inbox inbox;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    Running<Assess> assess;
};

TEST_F(AssessTest, everyQuestionGoesToTheDevice) {
    channel.answer(kWindow, R"({"code":0,"data":[{"layerId":1,"state":2}]})");
    ask(CB::LayerWindow, window(1));
    ASSERT_TRUE(inbox.waitFor(1));
    ask(CB::LayerWindow, window(1));
    EXPECT_EQ(inbox.at<LayerVerdict>(1).at(0).state, 2);
    EXPECT_EQ(channel.calls().size(), 2u);
    EXPECT_EQ(channel.calls()[0].body, R"([{"layerId":1,"window":{"width":1,"height":2,"x":3,"y":4}}])");
    // ... also those that wait while another is asked.
    channel.hold();
    for (int layer = 1; layer <= 3; ++layer) {
        ask(CB::LayerWindow, window(layer));
    }
    ASSERT_TRUE(channel.waitForCalls(3));
    channel.release();
    ASSERT_TRUE(inbox.waitFor(5));
    EXPECT_EQ(channel.calls().size(), 5u);
    EXPECT_NE(inbox.shared<LayerVerdict>(3), inbox.shared<LayerVerdict>(4));
}

TEST_F(AssessTest, failuresAreEmptyVerdictsAndMistakesOldOnes) {
    LogCapture log;
    ask(CB::LayerWindow, 1);
    ask(static_cast<CB>(13), window(1));
    ask(static_cast<CB>(0), window(1));
    channel.answer(kWindow, FakeChannel::Answer{true, 503, ""});
    ask(CB::LayerWindow, window(1));
    EXPECT_TRUE(inbox.at<LayerVerdict>(0).empty());
    EXPECT_TRUE(log.contains(
        "reloadCache need type is std::shared_ptr<s_LayerWindowArray> but hasint \n //assessgetter.cpp:reloadCache()"));
    EXPECT_TRUE(log.contains("reloadCache need type is invalid, type :13"));
    EXPECT_TRUE(log.contains("reloadCache need type is invalid, type :0"));
    EXPECT_TRUE(log.contains(" sendGetRequest failed:true,503 \n //assess.h:assessLayerWindow()#"));
    channel.answer(kWindow, R"({"code":0,"data":[{"layerId":1,"state":0}]})");
    ask(CB::LayerWindow, window(1));
    ask(CB::LayerWindow, std::string("wrong"));
    EXPECT_EQ(inbox.shared<LayerVerdict>(1), inbox.shared<LayerVerdict>(2)) << "the verdict itself, not a copy";
    ask(CB::LayerWindow, std::shared_ptr<std::list<s_LayerWindow>>());
    EXPECT_TRUE(inbox.at<LayerVerdict>(3).empty()) << "a null question isn't sent";
    EXPECT_TRUE(log.contains("val_ is null"));
    EXPECT_EQ(channel.calls().size(), 2u);
}

}  // namespace
