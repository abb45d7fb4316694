// The components of the session: user, about-us, system detail.
#include <gtest/gtest.h>

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/session/aboutus.h"
#include "lcdmemorycacheimpl/session/systemdetail.h"
#include "lcdmemorycacheimpl/session/user.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace lcdtest;
using LCD::ProtocolImpl::s_AboutUs;
using LCD::ProtocolImpl::s_SystemDetail;
namespace constants = LCD::MemoryCache::constants;

constexpr const char* kLogin = "/zelto/v1/system/auth/login";
constexpr const char* kCustom = "/zelto/v1/custom";

class SessionTest : public testing::Test {
protected:
    ProcessGuard guard;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    Inbox inbox;
};

TEST_F(SessionTest, aLoginDeliversItsTokenTwiceAndIsNeverClean) {
    LogCapture log;
    channel.answer(kLogin, R"({"code":0,"data":{"token":"t1"}})");
    Running<User> user;
    user->registerRequestCallBack("page", User::RequestCBType::TokenChanged, inbox.callback());
    EXPECT_EQ(user->token(), "");
    user->asyncLogin();
    EXPECT_EQ(inbox.at<std::string>(0), "t1");
    EXPECT_EQ(inbox.at<std::string>(1), "t1");
    EXPECT_EQ(user->token(), "t1");
    EXPECT_EQ(channel.token(), "t1");
    EXPECT_TRUE(log.contains("info: login start \n //usergetter.cpp:reloadCache()#"));
    EXPECT_TRUE(log.contains("info: login finished. token:t1 \n //"));

    channel.answer(kLogin, R"({"code":1,"message":"no"})");
    user.send(constants::MSG_DEVICE_DATA_REPLACED);
    EXPECT_EQ(inbox.at<std::string>(3), "") << "a failed login is told like a good one";
    EXPECT_EQ(user->token(), "");
    EXPECT_EQ(channel.token(), "");
    EXPECT_EQ(channel.calls().size(), 2u);
}

TEST_F(SessionTest, clearingTheTokenTellsEveryone) {
    channel.answer(kLogin, R"({"code":0,"data":{"token":"t1"}})");
    Running<User> user;
    user->registerRequestCallBack("page", User::RequestCBType::TokenChanged, inbox.callback());
    user->asyncLogin();
    ASSERT_TRUE(inbox.waitFor(2));
    user->clearToken();
    EXPECT_EQ(inbox.at<std::string>(2), "");
    EXPECT_EQ(channel.token(), "");
    ASSERT_EQ(platform.messages.posted.size(), 1u);
    const auto& [id, sender, target, flags] = platform.messages.posted[0];
    EXPECT_EQ(id, constants::MSG_TOKEN_CLEARED);
    EXPECT_EQ(sender, "lcdMemoryCacheUser");
    EXPECT_EQ(target, 9);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(platform.messages.alive, 0);
    user.send(constants::MSG_TOKEN_CLEARED);
    EXPECT_EQ(channel.calls().size(), 1u) << "the message it posts itself asks for no login";
}

TEST_F(SessionTest, aLoginThatWaitsBlocksNoToken) {
    Running<User> user;
    channel.hold();
    user->asyncLogin();
    ASSERT_TRUE(channel.waitForCalls(1));
    EXPECT_EQ(user->token(), "");
    channel.release();
}

TEST_F(SessionTest, aboutUsIsFetchedAgainOnReport) {
    channel.answer(kCustom, R"({"code":0,"data":{"mode":3}})");
    Running<AboutUs> about;
    about->registerRequestCallBack("page", AboutUs::RequestCBType::AboutUsChanged, inbox.callback());
    EXPECT_EQ(platform.receiver.push(0xe0100, "not looked at"), std::vector<bool>{true});
    EXPECT_EQ(inbox.at<s_AboutUs>(0).mode, 3);
    LogCapture log;
    channel.answer(kCustom, FakeChannel::Answer{true, 500, ""});
    EXPECT_EQ(platform.receiver.push(0xe0100, ""), std::vector<bool>{false});
    EXPECT_TRUE(log.contains("warning: get about us data fail \n //aboutusgetter.cpp:decodeAboutUs()#"));
    EXPECT_EQ(inbox.count(), 1u);

    about.send(constants::MSG_TOKEN_CLEARED);
    about->asyncGetSubData("page", AboutUs::RequestCBType::AboutUsChanged);
    EXPECT_EQ(inbox.at<s_AboutUs>(1).mode, 3) << "the failed fetch leaves the mirror";
    EXPECT_TRUE(log.contains("warning: get about us data fail \n //aboutusgetter.cpp:reloadCache()#"));
}

TEST_F(SessionTest, onlyANewLanguageIsTold) {
    channel.answer(kCustom, R"({"code":0,"data":{"mode":1}})");
    Running<AboutUs> about;
    about->registerRequestCallBack("page", AboutUs::RequestCBType::LanguageChanged, inbox.callback());
    about->setLanguageChanged("");
    about->setLanguageChanged("en");
    about->setLanguageChanged("en");
    about->setLanguageChanged("de");
    ASSERT_TRUE(inbox.waitFor(2));
    about.stop();
    EXPECT_EQ(inbox.count(), 2u);
    EXPECT_EQ(inbox.at<std::string>(1), "de");
}

TEST_F(SessionTest, systemDetailPassesOverOtherReports) {
    constexpr auto kType = SystemDetail::RequestCBType::SystemDetailChanged;
    channel.answer("/zelto/v1/system/detail", R"({"code":0,"data":{"ftbAudioFollow":1,"freezeAudioFollow":0}})");
    Running<SystemDetail> detail;
    detail->registerRequestCallBack("page", kType, inbox.callback());
    Inbox own;
    detail->asyncGetSubData("page", kType, own.callback(), -1);
    ASSERT_TRUE(own.waitFor(1));
    platform.receiver.push(0x7115e, R"({"type":3,"enable":7})");
    const auto got = inbox.at<s_SystemDetail>(0);
    EXPECT_EQ(std::pair(got.ftbAudioFollow, got.freezeAudioFollow), std::pair(1, 0)) << "of another type, but told";
    EXPECT_EQ(platform.receiver.push(0x7115e, "["), std::vector<bool>{false});
    detail.stop();
    EXPECT_EQ(inbox.count(), 1u) << "the report that can't be read is told to nobody";
}

}  // namespace
