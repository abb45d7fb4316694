#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/preset/presetreports.h"
#include "lcdmemorycacheimpl/preset/presetsetting.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = PresetSetting::RequestCBType;
using Applied = std::pair<std::string, s_PresetDetail>;

class PresetTest : public testing::Test {
protected:
    PresetTest() {
        platform.bind("lcdMemoryCacheUser", &user);
        platform.bind("lcdMemoryCacheSequence", &sequence);
        platform.channel.answer("/zelto/v1/preset/list-detail",
                                R"({"code":0,"data":{"count":2,"currentPresetId":3,"list":[)"
                                R"({"presetId":3,"presetIdObj":{"id":3,"sceneType":1},"general":{"name":"c"}},)"
                                R"({"presetId":5,"general":{"name":"e"}}]}})");
        presets.emplace();
        for (int kind = 1; kind <= 5; ++kind) {
            for (const char* name : {"page", MENUREQUESTERNAME}) {
                (*presets)->registerRequestCallBack(name, static_cast<CB>(kind), told[name][kind].callback());
            }
        }
        page();
    }
    s_PresetDetailPage page() {
        Inbox own;
        (*presets)->asyncGetSubData("page", CB::PresetDetailChanged, own.callback());
        return own.at<s_PresetDetailPage>(0);
    }
    std::vector<int> ids() {
        std::vector<int> all;
        for (const s_PresetDetail& each : page().list) {
            all.push_back(each.presetId);
        }
        return all;
    }
    void push(std::uint32_t report, const char* body,
              const LCD::CommChannel::AutoReportSource& source = {"theirs", 0}) {
        EXPECT_EQ(platform.receiver.push(report, body, source), std::vector<bool>{true});
    }

    ProcessGuard guard;
    std::map<std::string, std::map<int, Inbox>> told;
    Results results;
    FakeUser user{"mine"};
    FakeSequence sequence;
    FakePlatform platform;
    std::optional<Running<PresetSetting>> presets;
};

TEST_F(PresetTest, reportsChangeThePageAsTheyMust) {
    push(0xa2100, R"({"list":[{"presetId":3,"presetIdObj":{"sceneType":9},"general":{"name":"C"}},{"presetId":4}]})");
    EXPECT_EQ(ids(), (std::vector<int>{3, 5, 4})) << "a changed preset that is new goes to the end";
    EXPECT_EQ(page().count, 3);
    EXPECT_EQ(page().list.front().general.name, "C");
    EXPECT_EQ(page().list.front().presetIdObj.sceneType, 1);
    EXPECT_EQ(told["page"][1].at<s_PresetDetailPage>(0).list.size(), 3u);

    push(0xa2101, R"({"list":[{"presetId":1},{"presetId":3,"presetIdObj":{"sceneType":9},"general":{"name":"D"}}]})");
    EXPECT_EQ(ids(), (std::vector<int>{1, 3, 4, 5})) << "a created one falls into its place";
    EXPECT_EQ(page().currentPresetId, 0) << "overwritten, the current preset is no longer current";
    EXPECT_EQ(told["page"][2].at<s_PresetDetailPage>(0).list.size(), 2u);

    push(0xa2105, R"([{"presetId":4,"general":{"name":"four"}},{"presetId":77}])");
    EXPECT_EQ(told["page"][5].at<std::vector<s_PresetGeneral>>(0).size(), 2u);
    push(0xa2106, R"([{"presetId":77},{"presetId":5}])");
    EXPECT_EQ(told["page"][4].at<std::vector<s_PresetId>>(0).size(), 2u);
    EXPECT_EQ(ids(), (std::vector<int>{1, 3, 4}));
    EXPECT_EQ(page().count, 2);
    EXPECT_EQ(page().list.back().general.name, "four");
    EXPECT_EQ(platform.channel.calls().size(), 1u) << "each report leaves the page as good as a fetch";
}

TEST_F(PresetTest, aLoadsReportGoesToWhomItConcerns) {
    const auto load = [&](const char* requester) {
        const std::size_t before = results.count();
        (*presets)->asyncSetSubData(requester, CB::PresetApplyChanged,
                                    std::make_shared<s_PresetApply>(s_PresetApply{5, 2}), results.callback());
        EXPECT_TRUE(results.waitFor(before + 1));
        const int tag = platform.channel.lastChange().tag;
        push(0xa2203, R"({"presetId":5,"sceneType":2})", {"mine", tag});
        return tag;
    };
    EXPECT_EQ(load("page"), 1);
    EXPECT_EQ(told["page"][3].at<Applied>(0).first, "page");
    EXPECT_EQ(told["page"][3].at<Applied>(0).second.presetIdObj.sceneType, 2);
    EXPECT_EQ(page().currentPresetId, 5);
    EXPECT_EQ(load(BIZREQUESTERNAME), 2);
    EXPECT_EQ(told[MENUREQUESTERNAME][3].at<Applied>(0).first, MENUREQUESTERNAME);
    EXPECT_EQ(load(MENUREQUESTERNAME), 3);
    EXPECT_EQ(told["page"][3].at<Applied>(1).first, "") << "a load from the container concerns everybody";
    push(0xa2203, R"({"presetId":3,"sceneType":1})", {"theirs", 1});
    EXPECT_EQ(told["page"][3].at<Applied>(2).second.presetId, 3);
    push(0xa2203, R"({"presetId":99,"sceneType":1})");
    EXPECT_EQ(told["page"][3].at<Applied>(3).second.presetId, 3) << "an unknown preset tells of the last one";
    EXPECT_EQ(page().currentPresetId, 3);
    EXPECT_EQ(told[MENUREQUESTERNAME][3].count(), 4u);
}

TEST_F(PresetTest, failuresAreNamed) {
    LogCapture log;
    const std::tuple<std::uint32_t, const char*, const char*> failures[] = {
        {0xa2100, "preset detail", "Preset Detail Changed Decode fail"},
        {0xa2101, "preset create ", "Preset Create Changed Decode fail"},
        {0xa2105, "preset general ", "Preset General changed decode failed."},
        {0xa2106, "preset delete ", "Preset Delete Changed Decode fail"},
        {0xa2203, "preset apply ", "Preset Apply Changed Decode fail"}};
    for (const auto& [report, subject, second] : failures) {
        EXPECT_EQ(platform.receiver.push(report, "nonsense "), std::vector<bool>{false});
        EXPECT_TRUE(log.contains(std::string("decode ") + subject + " has failed. Error Code=nonsense  \n")) << subject;
        EXPECT_TRUE(log.contains(second)) << second;
    }
    const std::pair<CB, const char*> types[] = {{CB::PresetCreateChanged, "s_PresetCreate"},
                                                {CB::PresetApplyChanged, "s_PresetApply"},
                                                {CB::PresetDeleteChanged, "s_PresetIdArray"},
                                                {CB::PresetGeneralChanged, "s_InterfaceGeneral"}};
    for (const auto& [kind, type] : types) {
        const std::size_t before = results.count();
        (*presets)->asyncSetSubData("page", kind, 1, results.callback());
        ASSERT_TRUE(results.waitFor(before + 1));
        EXPECT_TRUE(log.contains(std::string("need type is ") + type + " but has int")) << type;
    }
    (*presets)->asyncSetSubData("page", CB::PresetGeneralChanged, std::shared_ptr<s_PresetGeneral>(),
                                results.callback());
    ASSERT_TRUE(results.waitFor(5));
    EXPECT_TRUE(log.contains("val_ is nullptr"));
    EXPECT_EQ(ids(), (std::vector<int>{3, 5}));
}

TEST_F(PresetTest, aKeysValuePassesThrough) {
    std::vector<int> values;
    (*presets)->setKeyValue(1);
    (*presets)->setKeyValueChangedCB([&](int value) { values.push_back(value); });
    (*presets)->setKeyValue(2);
    EXPECT_EQ(values, std::vector<int>{2});
}

}  // namespace
