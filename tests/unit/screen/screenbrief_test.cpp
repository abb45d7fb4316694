#include "lcdmemorycacheimpl/screen/screenbrief.h"

#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/node/node.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = ScreenBrief::RequestCBType;
using Status = ScreenBrief::s_ScreenObjIdOnMode;

constexpr const char* kList = "/zelto/v1/screen/list-thumb";

std::string screens(std::initializer_list<std::pair<int, int>> idsAndTypes) {
    std::string list;
    for (const auto& [id, type] : idsAndTypes) {
        list += (list.empty() ? "" : ",") + std::string("{\"screenId\":") + std::to_string(id) +
                ",\"screenIdObj\":{\"id\":" + std::to_string(id) + ",\"type\":" + std::to_string(type) + "}}";
    }
    return "{\"code\":0,\"data\":{\"list\":[" + list + "]}}";
}

class FixedConfig final : public LCD::Config::ILcdConfig {
public:
    std::map<int, int> defaultProgramEditStatus() const override { return {{1, 10}, {2, 20}}; }
};

class ScreenBriefTest : public testing::Test {
protected:
    ScreenBriefTest() {
        platform.bind("lcdConfig", &config);
        platform.bind("lcdMemoryCacheNode", &*node);
        platform.channel.answer("/zelto/v1/node/detail", R"({"code":0,"data":{"mode":{"workMode":2}}})");
        screen.emplace();
    }
    template <class T>
    T asked(CB kind) {
        Inbox own;
        (*screen)->asyncGetSubData("page", kind, own.callback());
        return own.at<T>(0);
    }
    using Pair = std::pair<int, int>;

    ProcessGuard guard;
    Inbox inbox;
    FixedConfig config;
    FakePlatform platform;
    Running<Node> node;
    std::optional<Running<ScreenBrief>> screen;
};

TEST_F(ScreenBriefTest, theFirstRegularScreenIsSelectedAndActive) {
    LogCapture log;
    platform.channel.answer(kList, screens({{4, 8}, {5, 32}, {6, 2}, {5, 2}}));
    EXPECT_EQ((*screen)->selectedRegularScreenId(), -1);
    EXPECT_EQ(asked<int>(CB::RegularScreenSelected), 5);
    EXPECT_EQ(asked<int>(CB::ActiveScreenSelected), 5);
    EXPECT_EQ(asked<int>(CB::ActiveScreenTypeChanged), 2) << "of two entries with one id the last tells the type";
    EXPECT_EQ(asked<s_ScreenBrief>(CB::ActiveScreenInfoChanged).screenIdObj.id, 5);
    EXPECT_EQ(asked<Pair>(CB::ActiveScreenPgmStatusChanged), Pair(5, 20)) << "the configured status of the node's mode";
    EXPECT_EQ((*screen)->activeScreenPgmStatus(6, 1), 10);
    EXPECT_EQ((*screen)->activeScreenPgmStatus(6, 3), -1);
    EXPECT_EQ(log.count("info: setActiveScreenPgmStatus skip notify, first init \n "
                        "//screenbriefgetter.cpp:setActiveScreenPgmStatus()#"),
              8u);
}

TEST_F(ScreenBriefTest, aStatusIsToldOnceAScreenIsSelected) {
    platform.channel.answer(kList, screens({{5, 2}}));
    (*screen)->registerRequestCallBack("page", CB::ActiveScreenPgmStatusChanged, inbox.callback());
    (*screen)->setActiveScreenPgmStatus({5, {5, 2}, 2, 7});
    asked<int>(CB::RegularScreenSelected);
    (*screen)->setActiveScreenPgmStatus({5, {5, 2}, 2, 8});
    EXPECT_EQ(inbox.at<Pair>(0), Pair(5, 8));
    (*screen)->setSelectedRegularScreen(5);
    Inbox selected;
    (*screen)->registerRequestCallBack("other", CB::RegularScreenSelected, selected.callback());
    (*screen)->setSelectedRegularScreen(6);
    (*screen)->setSelectedRegularScreen(6);
    EXPECT_EQ(selected.at<int>(0), 6);
    screen->stop();
    EXPECT_EQ(selected.count(), 1u);
    EXPECT_EQ(inbox.count(), 1u);
}

TEST_F(ScreenBriefTest, aWorkModeChangeForgetsEverything) {
    platform.channel.answer(kList, screens({{5, 2}}));
    asked<int>(CB::RegularScreenSelected);
    (*screen)->setActiveScreenPgmStatus({5, {5, 2}, 1, 7});
    EXPECT_EQ(platform.receiver.push(0x50104, "not looked at").size(), 2u) << "the node listens, too";
    EXPECT_EQ((*screen)->selectedRegularScreenId(), -1);
    EXPECT_EQ((*screen)->activeScreenPgmStatus(5, 1), -1);
    platform.channel.answer(kList, screens({{8, 4}}));
    EXPECT_EQ(asked<int>(CB::RegularScreenSelected), -1) << "no screen is a regular one";
    EXPECT_EQ(asked<int>(CB::ActiveScreenTypeChanged), -1);
    platform.channel.answer(kList, screens({{9, 2}}));
    screen->send(0xA0000001);
    EXPECT_EQ(asked<int>(CB::RegularScreenSelected), 9);
}

TEST_F(ScreenBriefTest, failuresLeaveTheSelectionAndAreFetchedAgain) {
    LogCapture log;
    platform.channel.answer(kList, R"({"code":5,"message":"m"})");
    EXPECT_EQ(asked<int>(CB::RegularScreenSelected), -1);
    EXPECT_TRUE(
        log.contains("screen/list-thumb has failed. Response Code=5 Reponse Message=m \n //screen.h:getScreenList()"));
    platform.channel.answer(kList, "{");
    asked<int>(CB::RegularScreenSelected);
    EXPECT_TRUE(log.contains("screen/list-thumb decode has failed. Error Message=error at line"));
    platform.channel.answer(kList, screens({{5, 2}}));
    EXPECT_EQ(asked<int>(CB::RegularScreenSelected), 5);
}

}  // namespace
