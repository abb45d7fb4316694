#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/screen/switcheffect.h"
#include "lcdmemorycacheimpl/screen/switchmode.h"
#include "lcdmemorycacheimpl/screen/transitionpreview.h"
#include "lcdprotocolimpl/core/codec.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;

class SwitchSettingsTest : public testing::Test {
protected:
    ProcessGuard guard;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    Inbox inbox;
};

constexpr const char* kEffectPath = "/zelto/v1/screen/global/switch-effect";
constexpr auto kEffect = SwitchEffect::RequestCBType::SwitchEffectChanged;
constexpr auto kActive = SwitchEffect::RequestCBType::ActiveEffectChanged;

std::string text(const s_GetSwitchEffect& value) {
    std::string out;
    encode(out, value);
    return out;
}

TEST_F(SwitchSettingsTest, anEffectReportCarriesAllParametersButOneTime) {
    s_GetSwitchEffect device;
    device.switchEffect.time = 700;
    device.switchEffect.type = 1;
    channel.answer(kEffectPath, "{\"code\":0,\"data\":" + text(device) + "}");
    Running<SwitchEffect> effect;
    effect->registerRequestCallBack("page", kEffect, inbox.callback());
    effect->asyncGetSubData("page", kEffect);
    EXPECT_EQ(text(inbox.at<s_GetSwitchEffect>(0)), text(device));

    // Which sub-record takes the report's time and type, by its type.
    s_GetSwitchEffectParaBody& own = device.switchEffect;
    struct {
        int type;
        int* time;
        int* kind;
    } const places[] = {{1, &own.fadeInOut.time, &own.fadeInOut.type},
                        {2, &own.dip.time, &own.dip.type},
                        {3, &own.wipe.time, &own.wipe.type},
                        {5, &own.dve.time, &own.dve.type},
                        {4, nullptr, nullptr}};
    std::size_t delivery = 1;
    int number = 10;
    for (const auto& place : places) {
        s_SetSwitchEffectParaBody report;
        report.time = ++number;
        report.type = place.type;
        report.wipe = {++number, ++number, ++number, ++number, ++number, ++number, ++number, ++number};
        report.fadeInOut.source = ++number;
        report.dip.source = ++number;
        report.dve = {++number, ++number, ++number, ++number, ++number, ++number, ++number, ++number, ++number};
        std::string body;
        encode(body, report);
        EXPECT_EQ(platform.receiver.push(0x71205, body), std::vector<bool>{true});

        const auto& [image, symmetry, posX, posY, frameW, frameS, direction, wipeSource] = report.wipe;
        own.wipe = {own.wipe.time, own.wipe.type, image, symmetry, posX, posY, frameW, frameS, direction, wipeSource};
        own.fadeInOut.source = report.fadeInOut.source;
        own.dip.source = report.dip.source;
        const auto& d = report.dve;
        own.dve = {own.dve.type, d.devType,         d.directionDev, d.brightness, d.softness, d.keySourceReverse,
                   d.cutout,     d.directionEffect, d.keySource,    own.dve.time, d.source};
        if (place.time != nullptr) {
            *place.time = report.time;
            *place.kind = report.type;
        }
        EXPECT_EQ(text(inbox.at<s_GetSwitchEffect>(delivery++)), text(device)) << "type " << place.type;
    }
}

TEST_F(SwitchSettingsTest, theActiveEffectHasItsOwnReport) {
    Running<SwitchEffect> effect;
    Inbox whole;
    effect->registerRequestCallBack("page", kActive, inbox.callback());
    effect->asyncGetSubData("page", kEffect, whole.callback());
    EXPECT_EQ(whole.at<s_GetSwitchEffect>(0).switchEffect.type, -1);
    platform.receiver.push(0x71209, R"({"type":3})");
    EXPECT_EQ(inbox.at<int>(0), 3);
    effect->asyncGetSubData("page", kEffect, whole.callback());
    EXPECT_EQ(whole.at<s_GetSwitchEffect>(1).switchEffect.type, 3);
    EXPECT_EQ(whole.at<s_GetSwitchEffect>(1).switchEffect.time, 500) << "its time stays";
}

TEST_F(SwitchSettingsTest, aReportThatCantBeReadMakesTheNextRequestFetch) {
    LogCapture log;
    channel.answer("/zelto/v1/screen/global/swap", R"({"code":0,"data":{"enable":1}})");
    Running<SwitchMode> mode;
    constexpr auto kType = SwitchMode::RequestCBType::SwitchModeChanged;
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
}

TEST_F(SwitchSettingsTest, changesGoOutAndAFailedOneRedeliversTheMirror) {
    Running<SwitchEffect> effect;
    Running<SwitchMode> mode;
    Running<TransitionPreview> preview;
    Results results;
    preview->registerRequestCallBack("page", TransitionPreview::RequestCBType::TransitionEnableChanged,
                                     inbox.callback());

    effect->asyncSetSubData("page", kEffect, std::make_shared<s_SetSwitchEffect>(), results.callback());
    ASSERT_TRUE(results.waitFor(1));
    effect->asyncSetSubData("page", kActive, std::make_shared<s_SetActiveEffect>(s_SetActiveEffect{5}),
                            results.callback());
    ASSERT_TRUE(results.waitFor(2));
    mode->asyncSetSubData("page", SwitchMode::RequestCBType::SwitchModeChanged,
                          std::make_shared<s_SwitchMode>(s_SwitchMode{1}), results.callback());
    ASSERT_TRUE(results.waitFor(3));
    channel.answer("/zelto/v1/screen/global/transition-preview", R"({"code":4,"message":"no"})");
    preview->asyncSetSubData("page", TransitionPreview::RequestCBType::TransitionEnableChanged,
                             std::make_shared<s_TransitionPreview>(s_TransitionPreview{1}), results.callback());
    ASSERT_TRUE(results.waitFor(4));
    EXPECT_EQ(results.all(), (std::vector<bool>{true, true, true, false}));
    EXPECT_EQ(inbox.at<s_TransitionPreview>(0).enable, 0);

    std::vector<std::string> sent;
    for (const auto& call : channel.calls()) {
        if (call.hasBody) {
            sent.push_back(call.verb + " " + call.path.substr(call.path.rfind('/') + 1) + " " +
                           call.body.substr(0, 18));
        }
    }
    EXPECT_EQ(sent,
              (std::vector<std::string>{"PUT switch-effect {\"switchEffect\":{\"", "POST active-effect {\"type\":5}",
                                        "PUT swap {\"enable\":1}", "POST transition-preview {\"enable\":1}"}));
}

TEST_F(SwitchSettingsTest, wrongPayloadsAreNamed) {
    LogCapture log;
    Running<SwitchEffect> effect;
    Running<SwitchMode> mode;
    Running<TransitionPreview> preview;
    Results results;
    const std::any wrong = std::make_shared<int>(1);
    effect->asyncSetSubData("page", kEffect, wrong, results.callback());
    effect->asyncSetSubData("page", kActive, wrong, results.callback());
    mode->asyncSetSubData("page", SwitchMode::RequestCBType::SwitchModeChanged, wrong, results.callback());
    preview->asyncSetSubData("page", TransitionPreview::RequestCBType::TransitionEnableChanged, wrong,
                             results.callback());
    ASSERT_TRUE(results.waitFor(4));
    for (const char* type : {"s_SetSwitchEffect", "s_SetActiveEffect", "s_SwitchMode", "s_TransitionPreview"}) {
        EXPECT_EQ(log.count(std::string("need type is ") + type + " but has std::shared_ptr<int>"), 1u);
    }
}

}  // namespace
