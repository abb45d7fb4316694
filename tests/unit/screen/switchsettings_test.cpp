#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/screen/switchmode.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace lcdtest;
using LCD::ProtocolImpl::s_SwitchMode;

TEST(SwitchSettings, whatFailsIsFetchedOrToldAnew) {
    constexpr const char* kPath = "/zelto/v1/screen/global/swap";
    constexpr auto kType = SwitchMode::RequestCBType::SwitchModeChanged;
    const ProcessGuard guard;
    Inbox inbox;
    Results results;
    LogCapture log;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    channel.answer(kPath, R"({"code":0,"data":{"enable":1}})");
    Running<SwitchMode> mode;
    mode->registerRequestCallBack("page", kType, inbox.callback());
    mode->asyncGetSubData("page", kType);
    EXPECT_EQ(inbox.at<s_SwitchMode>(0).enable, 1);
    platform.receiver.push(0x71201, R"({"enable":5})");
    EXPECT_EQ(inbox.at<s_SwitchMode>(1).enable, 5);
    EXPECT_EQ(channel.calls().size(), 1u);
    EXPECT_EQ(platform.receiver.push(0x71201, "nonsense"), std::vector<bool>{false});
    EXPECT_TRUE(log.contains("decode screen switch mode has failed. Error Code=nonsense \n"));
    mode->asyncGetSubData("page", kType);
    EXPECT_EQ(inbox.at<s_SwitchMode>(2).enable, 1);
    EXPECT_EQ(channel.calls().size(), 2u);

    channel.answer(kPath, R"({"code":4,"message":"no"})");
    mode->asyncSetSubData("page", kType, std::make_shared<s_SwitchMode>(s_SwitchMode{7}), results.callback());
    ASSERT_TRUE(results.waitFor(1));
    EXPECT_FALSE(results.last());
    EXPECT_EQ(inbox.at<s_SwitchMode>(3).enable, 1);
}

}  // namespace
