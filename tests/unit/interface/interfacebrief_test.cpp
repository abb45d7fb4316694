#include "lcdmemorycacheimpl/interface/interfacebrief.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = InterfaceBrief::RequestCBType;
using List = std::list<s_InterfaceBrief>;

constexpr const char* kList = "/zelto/v1/interface/list-thumb";

std::string entry(int id, int kind, int connector) {
    return "{\"interfaceId\":" + std::to_string(id) +
           ",\"auxiliaryInfo\":{\"connectorInfo\":{\"interfaceType\":" + std::to_string(kind) +
           ",\"type\":" + std::to_string(connector) + "}},\"actualThumbTiming\":{\"frame\":59.94,\"width\":1920}}";
}

class InterfaceBriefTest : public testing::Test {
protected:
    void answer(std::initializer_list<std::string> entries) {
        std::string list;
        for (const std::string& each : entries) {
            list += (list.empty() ? "" : ",") + each;
        }
        platform.channel.answer(kList, "{\"code\":0,\"data\":{\"list\":[" + list + "]}}");
    }
    std::vector<int> idsOf(CB kind) {
        Inbox own;
        interfaces->asyncGetSubData("page", kind, own.callback());
        std::vector<int> ids;
        for (const s_InterfaceBrief& each : own.at<List>(0)) {
            ids.push_back(each.interfaceId);
        }
        return ids;
    }

    ProcessGuard guard;
    Inbox inbox;
    FakePlatform platform;
    Running<InterfaceBrief> interfaces;
};

TEST_F(InterfaceBriefTest, kindsAreChosenByTheirBits) {
    answer({entry(1, 2, 5), entry(2, 4, 5), entry(3, 64, 5), entry(4, 2, 61), entry(5, 1, 5), entry(6, 2 + 8, 5)});
    EXPECT_EQ(idsOf(CB::InterfacesInput), (std::vector<int>{1, 6}));
    EXPECT_EQ(idsOf(CB::InterfacesOutput), (std::vector<int>{2, 3, 6}));
    EXPECT_EQ(idsOf(CB::ExpandSourceChanged), (std::vector<int>{4}));
    EXPECT_EQ(platform.channel.calls().size(), 1u);
    // Without an output its list isn't delivered; an empty one of expansion sources is.
    answer({entry(1, 2, 5)});
    interfaces.send(0xA0000001);
    interfaces->asyncGetSubData("page", CB::InterfacesOutput, inbox.callback());
    interfaces->asyncGetSubData("page", CB::GeneralChanged, inbox.callback());
    EXPECT_TRUE(idsOf(CB::ExpandSourceChanged).empty());
    EXPECT_EQ(inbox.count(), 0u);
}

TEST_F(InterfaceBriefTest, anEmptyListIsAFailureThatLeavesTheMirror) {
    answer({entry(1, 2, 5)});
    EXPECT_EQ(idsOf(CB::InterfacesInput).size(), 1u);
    answer({});
    interfaces.send(0xA0000002);
    EXPECT_EQ(idsOf(CB::InterfacesInput).size(), 1u);
}

TEST_F(InterfaceBriefTest, cardAndWorkModesEmptyTheListAtOnce) {
    answer({entry(1, 2, 5)});
    interfaces->registerRequestCallBack("page", CB::SubCardModeChanged, inbox.callback());
    interfaces->setSelectedInput(3);
    EXPECT_EQ(idsOf(CB::InterfacesInput).size(), 1u);
    platform.channel.answer(kList, FakeChannel::Answer{true, 500, ""});
    EXPECT_EQ(platform.receiver.push(0x50404, ""), std::vector<bool>{true});
    EXPECT_EQ(inbox.at<int>(0), 3);
    EXPECT_TRUE(idsOf(CB::ExpandSourceChanged).empty());
    answer({entry(1, 2, 61)});
    EXPECT_EQ(idsOf(CB::ExpandSourceChanged).size(), 1u);
    EXPECT_EQ(platform.receiver.push(0x50104, ""), std::vector<bool>{true});
    platform.channel.answer(kList, FakeChannel::Answer{true, 500, ""});
    EXPECT_TRUE(idsOf(CB::ExpandSourceChanged).empty());
}

TEST_F(InterfaceBriefTest, renamesAndSelections) {
    answer({entry(1, 2, 5), entry(2, 4, 5)});
    interfaces->registerRequestCallBack("page", CB::InputSelectedChanged, inbox.callback());
    interfaces->registerRequestCallBack("page", CB::OutputSelectedChanged, inbox.callback());
    EXPECT_EQ(idsOf(CB::InterfacesInput).size(), 1u);
    EXPECT_EQ(platform.receiver.push(
                  0x61102, R"([{"interfaceId":9,"general":{"name":"x"}},{"interfaceId":1,"general":{"name":"new"}}])"),
              std::vector<bool>{true});
    Inbox own;
    interfaces->asyncGetSubData("page", CB::InterfacesInput, own.callback());
    EXPECT_EQ(own.at<List>(0).front().general.name, "new");
    EXPECT_NEAR(own.at<List>(0).front().actualThumbTiming.frame, 59.94, 1e-4);
    EXPECT_EQ(platform.receiver.push(0x61102, "{}"), std::vector<bool>{false});
    interfaces->setSelectedInput(1);
    interfaces->setSelectedInput(1);
    interfaces->setSelectedOutput(2);
    EXPECT_EQ(inbox.at<int>(0), 1);
    EXPECT_EQ(inbox.at<int>(1), 2);
    EXPECT_EQ(std::pair(interfaces->selectedInputId(), interfaces->selectedOutputId()), std::pair(1, 2));
    interfaces.stop();
    EXPECT_EQ(inbox.count(), 2u);
}

}  // namespace
