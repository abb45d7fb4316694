#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/screen/screendetailtake.h"
#include "lcdmemorycacheimpl/screen/screentake.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using Take = ScreenTake::RequestCBType;
using Detail = ScreenDetailTake::RequestCBType;

class TakeTest : public testing::Test {
protected:
    std::vector<std::uint32_t> posted() const {
        std::vector<std::uint32_t> ids;
        for (const auto& each : platform.messages.posted) {
            ids.push_back(each.id);
        }
        return ids;
    }

    ProcessGuard guard;
    Inbox takes;
    Inbox bars;
    Results results;
    FakePlatform platform;
};

TEST_F(TakeTest, ofTheSelectedScreensIsToldAtOnceAndItsBarOnlyByReloads) {
    Running<ScreenTake> take;
    std::thread::id teller;
    take->registerRequestCallBack("page", Take::ScreenTakeSet, [&](const std::any& payload) {
        teller = std::this_thread::get_id();
        takes.callback()(payload);
    });
    take->registerRequestCallBack("page", Take::ScreenTbarChanged, bars.callback());
    platform.receiver.push(0x71203, R"({"status":1,"swap":0})");
    EXPECT_EQ(takes.at<s_TakeState>(0).status, 1);
    EXPECT_EQ(teller, std::this_thread::get_id());

    platform.channel.answer("/zelto/v1/screen/selected/tbar",
                            R"({"code":0,"data":{"percent":40,"effectSelect":3,"switchEffect":{"time":9,"type":9}}})");
    platform.receiver.push(0x71202, R"({"percent":70})");
    const auto bar = bars.at<s_Tbar>(0);
    EXPECT_EQ(std::tuple(bar.percent, bar.effectSelect, bar.switchEffect.time, bar.switchEffect.type),
              std::tuple(40, 0, 500, 1));
    platform.receiver.push(0x71204, R"({"direction":1})");
    EXPECT_EQ(platform.receiver.push(0x50104, ""), std::vector<bool>{true});
    platform.channel.answer("/zelto/v1/screen/selected/tbar", FakeChannel::Answer{true, 500, ""});
    LogCapture log;
    platform.receiver.push(0x71202, R"({"percent":71})");
    EXPECT_EQ(bars.at<s_Tbar>(1).percent, 40);
    EXPECT_TRUE(log.contains("Fail to get data: 500 ret:true \n //take.h:getScreenTbar()#"));
    for (const auto& [report, text] :
         {std::pair{0x71203u, "screen take"}, {0x71202u, "screen tabr"}, {0x71204u, "screen cut"}}) {
        EXPECT_EQ(platform.receiver.push(report, "["), std::vector<bool>{false});
        EXPECT_TRUE(log.contains(std::string("decode ") + text + " has failed. Error Code=[ \n"));
    }
    EXPECT_EQ(takes.count(), 1u);
}

TEST_F(TakeTest, ofNamedScreensMakesTheLayersStale) {
    Running<ScreenDetailTake> take;
    Inbox cuts;
    take->registerRequestCallBack("page", Detail::ScreenDetailTakeSet, takes.callback());
    take->registerRequestCallBack("page", Detail::ScreenDetailCutSet, cuts.callback());
    take->registerRequestCallBack("page", Detail::ScreenDetailTbarSet, bars.callback());
    platform.receiver.push(0x71302, R"({"status":0})");
    EXPECT_TRUE(posted().empty());
    platform.receiver.push(0x71302, R"({"status":1})");
    platform.receiver.push(0x71304, R"([{"screenId":4,"direction":1}])");
    EXPECT_EQ(posted(), (std::vector<std::uint32_t>{0xA0000003, 0xA0000003}));
    EXPECT_EQ(takes.count(), 2u);
    EXPECT_EQ(cuts.at<std::vector<s_ScreenDetailDirection>>(0).at(0).screenId, 4);

    platform.channel.answer("/zelto/v1/screen/tbar", R"({"code":0,"data":[{"screenId":1,"percent":5}]})");
    Inbox own;
    take->asyncGetSubData("page", Detail::ScreenDetailTbarSet, own.callback());
    EXPECT_EQ(own.at<std::vector<s_ScreenDetailTbar>>(0).at(0).percent, 5);
    platform.receiver.push(0x71303, R"([{"screenId":2,"percent":50},{"screenId":1,"percent":-1}])");
    platform.receiver.push(0x71303, "[]");
    EXPECT_EQ(posted().size(), 2u) << "the first element decides whether the move has ended";
    platform.receiver.push(0x71303, R"([{"screenId":1}])");
    EXPECT_EQ(posted().size(), 3u);
    const auto merged = bars.at<std::vector<s_ScreenDetailTbar>>(0);
    ASSERT_EQ(merged.size(), 2u);
    EXPECT_EQ(std::tuple(merged[0].percent, merged[1].screenId, merged[1].percent), std::tuple(-1, 2, 50));
    take.stop();
    EXPECT_EQ(bars.count(), 1u);
}

TEST_F(TakeTest, changesNameTheirTypesAndTheirFailures) {
    LogCapture log;
    Running<ScreenTake> take;
    Running<ScreenDetailTake> detail;
    platform.channel.answer("/zelto/v1/screen/selected/cut", FakeChannel::Answer{false, 0, ""});
    take->asyncSetSubData("page", Take::ScreenCutSet, std::make_shared<s_Direction>(), results.callback());
    ASSERT_TRUE(results.waitFor(1));
    EXPECT_TRUE(log.contains("Fail to send data: 0 ret:false \n //take.h:setScreenCut()#"));
    take->asyncSetSubData("page", Take::ScreenTakeSet, 1, results.callback());
    take->asyncSetSubData("page", Take::ScreenCutSet, std::shared_ptr<s_Direction>(), results.callback());
    for (auto kind : {Detail::ScreenDetailTakeSet, Detail::ScreenDetailCutSet, Detail::ScreenDetailTbarSet}) {
        detail->asyncSetSubData("page", kind, 1, results.callback());
    }
    ASSERT_TRUE(results.waitFor(6));
    for (const char* type :
         {"s_Take", "s_ScreenDetailTakeArray", "s_ScreenDetailDirectionArray", "s_ScreenDetailTbarArray"}) {
        EXPECT_TRUE(log.contains(std::string("need type is ") + type + " but has int")) << type;
    }
    EXPECT_TRUE(log.contains("val_ is null"));
}

}  // namespace
