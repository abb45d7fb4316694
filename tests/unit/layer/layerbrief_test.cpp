#include "lcdmemorycacheimpl/layer/layerbrief.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/engine/echo.h"
#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = LayerBrief::RequestCBType;
using testing::ElementsAre;

constexpr const char* kList = "/zelto/v1/layers/list-thumb";
// Layer 10 and layer 20, with identities 1 and 2 of the types 1 and 4.
constexpr const char* kTwoLayers =
    R"({"code":0,"data":{"list":[{"layerId":10,"layerIdObj":{"id":1,"type":1},"general":{"name":"a"},"enable":1},)"
    R"({"layerId":20,"layerIdObj":{"id":2,"type":4},"general":{"name":"b"},"enable":1,"transitionFollow":1}]}})";

class LayerBriefTest : public testing::Test {
protected:
    LayerBriefTest() {
        platform.bind("lcdMemoryCacheUser", &user);
        platform.bind("lcdMemoryCacheSequence", &sequence);
        channel.answer(kList, kTwoLayers);
        layers.emplace();
        for (int kind = 1; kind <= 12; ++kind) {
            (*layers)->registerRequestCallBack("page", static_cast<CB>(kind), [this, kind](const std::any& payload) {
                monitor.change([&] { heard.push_back(kind); });
                last[kind].callback()(payload);
            });
        }
    }

    std::vector<s_LayerBrief> list(int mask = -1) {
        Inbox own;
        (*layers)->asyncGetSubData("page", CB::LayersChanged, own.callback(), mask);
        return own.at<std::vector<s_LayerBrief>>(0);
    }
    /// Which kinds the subscriber heard of, in order, once all that was queued before has been delivered.
    std::vector<int> kindsHeard() {
        Inbox own;
        (*layers)->asyncGetSubData("page", CB::LayerSelectedChanged, own.callback(), 0);
        own.waitFor(1);
        return monitor.read([this] { return heard; });
    }
    void push(std::uint32_t report, const char* body, const LCD::CommChannel::AutoReportSource& source = {}) {
        EXPECT_EQ(platform.receiver.push(report, body, source), std::vector<bool>{true});
    }
    static s_LayerUniqueId first() { return {10, {1, 1, 0, 0, 0}}; }

    ProcessGuard guard;
    Monitor monitor;
    std::vector<int> heard;
    std::map<int, Inbox> last;
    FakeUser user{"mine"};
    FakeSequence sequence;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    std::optional<Running<LayerBrief>> layers;
};

TEST_F(LayerBriefTest, anEmptyListIsAFailureThatEmptiesTheMirror) {
    EXPECT_EQ(list().size(), 2u);
    EXPECT_EQ(list(4).size(), 1u);
    EXPECT_TRUE(list(0).empty());
    channel.answer(kList, R"({"code":0,"data":{"list":[]}})");
    LogCapture log;
    const std::size_t before = channel.calls().size();
    push(0x50404, "");
    EXPECT_TRUE(list().empty());
    EXPECT_TRUE(
        log.contains("/zelto/v1/layers/list-thumb decode has failed. Error Message=, code=0, message= \n //layer.h:"));
    EXPECT_TRUE(list().empty());
    EXPECT_GE(channel.calls().size(), before + 2) << "it stays dirty";
    channel.answer(kList, kTwoLayers);
    EXPECT_EQ(list().size(), 2u);
}

TEST_F(LayerBriefTest, theSelectionIsThePanelsOwn) {
    list();
    (*layers)->setSelectedLayer(first());
    (*layers)->setSelectedLayer(first());
    (*layers)->setSelectedLayerType(1);
    (*layers)->setSelectedLayerType(4);
    (*layers)->setMVRSelectedLayerId(20);
    (*layers)->setMVRSelectedLayerId(20);
    EXPECT_THAT(kindsHeard(), ElementsAre(8, 6, 11));
    EXPECT_EQ(last[8].at<s_LayerUniqueId>(0), first());
    EXPECT_EQ(last[6].at<int>(0), 4);
    EXPECT_EQ(last[11].at<int>(0), 20);
    EXPECT_EQ((*layers)->selectedLayerId(), first());
    EXPECT_EQ((*layers)->selectedLayerType(), 4);
    EXPECT_EQ((*layers)->MVRSelectedLayerId(), 20);
    EXPECT_EQ(channel.calls().size(), 1u) << "the device hears nothing of it";
}

TEST_F(LayerBriefTest, theSelectionFollowsItsLayerToAnotherNumber) {
    list();
    (*layers)->setSelectedLayer(first());
    push(0x81102,
         R"([{"layerId":11,"layerIdObj":{"id":1,"type":1},"enable":1,"general":{"name":"c"},)"
         R"("source":{"general":{"sourceId":5,"sourceName":"s"}}},{"layerId":30,"layerIdObj":{"id":3,"type":1}}])");
    EXPECT_THAT(kindsHeard(), ElementsAre(8, 5, 8, 3));
    EXPECT_EQ((*layers)->selectedLayerId().layerId, 11);
    const auto now = list();
    ASSERT_EQ(now.size(), 3u);
    EXPECT_EQ(std::tuple(now[0].layerId, now[0].general.name, now[0].source.general.sourceName),
              std::tuple(11, "c", "s"));
    EXPECT_EQ(now[1].transitionFollow, 1) << "a create doesn't touch it";
    EXPECT_EQ(std::any_cast<std::vector<s_LayerBrief>>(last[3].at<std::any>(0)).size(), 3u);

    // A dirty message fetches at once and tells the number even when it is the same.
    heard.clear();
    layers->send(0xA0000003);
    EXPECT_THAT(kindsHeard(), ElementsAre(5, 8));
    EXPECT_EQ((*layers)->selectedLayerId().layerId, 10);
    // A selection whose layer has gone stays, and so does one whose layer is appended.
    channel.answer(kList, R"({"code":0,"data":{"list":[{"layerId":20,"layerIdObj":{"id":2,"type":4}}]}})");
    heard.clear();
    layers->send(0xA0000001);
    push(0x81102, R"([{"layerId":12,"layerIdObj":{"id":1,"type":1}}])");
    EXPECT_THAT(kindsHeard(), ElementsAre(3));
    EXPECT_EQ((*layers)->selectedLayerId().layerId, 10);
    layers->send(0xA0000002);
    EXPECT_EQ((*layers)->selectedLayerId().layerId, 10);
}

TEST_F(LayerBriefTest, closedAndDeletedLayersStayInTheList) {
    LogCapture log;
    list();
    (*layers)->setSelectedLayer(first());
    push(0x8111a, R"([{"layerId":10,"enable":0},{"layerId":99,"enable":1}])");
    EXPECT_THAT(kindsHeard(), ElementsAre(8, 1, 1)) << "kind 2 only passes through the queue";
    EXPECT_EQ(last[1].at<s_LayerData>(0).layerIdObj.id, 1);
    EXPECT_EQ(last[1].at<s_LayerData>(1).layerId, 99);
    EXPECT_EQ(list()[0].general.name, "");
    EXPECT_EQ((*layers)->selectedLayerId(), first());
    push(0x81103, R"([{"layerId":98},{"layerId":20}])");
    EXPECT_THAT(kindsHeard(), ElementsAre(8, 1, 1, 4));
    EXPECT_TRUE(log.contains("error: not find delete layer id. id=98 \n //"));
    EXPECT_EQ(std::pair(list()[1].enable, list()[1].general.name), std::pair(0, std::string("b")));
    for (const std::uint32_t report : {0x8111aU, 0x81102U, 0x81103U, 0x8112fU, 0x81109U, 0x8110aU}) {
        push(report, "[]");
    }
    EXPECT_THAT(kindsHeard(), ElementsAre(8, 1, 1, 4)) << "empty reports tell nothing";
}

TEST_F(LayerBriefTest, namesAndSourcesAreMergedSilently) {
    list();
    push(0x81109, R"([{"layerId":10,"general":{"name":"new"}},{"layerId":99}])");
    push(0x8110a, R"([{"layerId":20,"source":{"general":{"sourceId":3,"sourceType":2,"sourceName":"x"}}}])");
    EXPECT_THAT(kindsHeard(), ElementsAre());
    EXPECT_EQ(list()[0].general.name, "new");
    EXPECT_EQ(list()[1].source.general.sourceId, 3);
    EXPECT_EQ(list()[1].source.general.sourceName, "") << "a source report carries two numbers";
    push(0x62203, "");
    push(0x50104, "");
    EXPECT_THAT(kindsHeard(), ElementsAre(9));
    EXPECT_EQ(list()[0].general.name, "a") << "both make the list stale";
}

TEST_F(LayerBriefTest, transitionFollowTellsOwnFromForeign) {
    std::vector<std::string> toOther;
    (*layers)->registerRequestCallBack("other", CB::LayerTransFollow, [&](const std::any& payload) {
        monitor.change([&] {
            toOther.push_back(
                std::any_cast<std::shared_ptr<std::pair<std::string, s_LayerTransitionFollow>>>(payload)->first);
        });
    });
    list();
    const int drawn = drawSequence(sequence, 0x8112f, "page");
    LogCapture log;
    push(0x8112f, R"([{"layerId":10,"enable":1},{"layerId":99,"enable":1}])", {"mine", drawn});
    push(0x8112f, R"([{"layerId":10,"enable":0}])", {"mine", drawn + 1});
    push(0x8112f, R"([{"layerId":10,"enable":1}])", {"theirs", 0});
    EXPECT_THAT(kindsHeard(), ElementsAre(12, 12, 12));
    EXPECT_EQ(toOther, (std::vector<std::string>{"", ""}));
    const auto own = last[12].at<std::pair<std::string, s_LayerTransitionFollow>>(0);
    EXPECT_EQ(std::tuple(own.first, own.second.layerId), std::tuple("page", 10));
    EXPECT_TRUE(
        log.contains("LayerBrief transFollow notify layerId=10 requestName=page seq=1 reportSource.source=mine"));
    EXPECT_TRUE(log.contains("LayerBrief notifyLayerTransFollow emit requester=page layerId=10 enable="));
    Inbox none;
    (*layers)->asyncGetSubData("page", CB::LayerTransFollow, none.callback(), 77);
    (*layers)->asyncGetSubData("page", CB::TypeChanged, none.callback(), 77);
    (*layers)->asyncGetSubData("page", CB::TypeChanged, none.callback(), 20);
    EXPECT_EQ(none.at<s_LayerUniqueId>(0).layerIdObj.id, 2);
    EXPECT_TRUE(log.contains("LayerBrief notifyLayerTransFollow cache miss objectId"));
}

TEST_F(LayerBriefTest, reportsThatCantBeReadAreErrors) {
    LogCapture log;
    const std::pair<std::uint32_t, const char*> failures[] = {
        {0x8111a, "interface layer switch"},  {0x81102, "layer create"},           {0x81103, "layer delete"},
        {0x81109, "interface layer General"}, {0x8110a, "interface layer Source"}, {0x8112f, "layer select"}};
    for (const auto& [report, subject] : failures) {
        EXPECT_EQ(platform.receiver.push(report, "{}"), std::vector<bool>{false});
        EXPECT_TRUE(log.contains(std::string("error: decode ") + subject + " has failed. Error Code={} \n")) << subject;
    }
    EXPECT_EQ(log.count("layerbriefgetter.cpp:decodeLayer"), 6u);
}

}  // namespace
