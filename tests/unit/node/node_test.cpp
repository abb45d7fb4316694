#include "lcdmemorycacheimpl/node/node.h"

#include <gtest/gtest.h>

#include "tests/support/fakes.h"
#include "tests/support/inbox.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using namespace LCD::ProtocolImpl;
using namespace lcdtest;
using CB = Node::RequestCBType;

constexpr const char* kDetail = "/zelto/v1/node/detail";
constexpr const char* kBackup = "/zelto/v1/node/backup";

class NodeTest : public testing::Test {
protected:
    /// What the last report of an id made of a kind.
    template <class T>
    T told(std::uint32_t report, const std::string& body, CB kind) {
        const std::size_t before = inboxes[kind].count();
        platform.receiver.push(report, body);
        return inboxes[kind].template at<T>(before);
    }
    void subscribe() {
        for (int kind = 1; kind <= 18; ++kind) {
            const auto type = static_cast<CB>(kind);
            node->registerRequestCallBack("page", type, inboxes[type].callback());
        }
    }
    template <class T>
    T asked(CB kind) {
        Inbox own;
        node->asyncGetSubData("page", kind, own.callback());
        return own.at<T>(0);
    }

    ProcessGuard guard;
    std::map<CB, Inbox> inboxes;
    Results results;
    FakePlatform platform;
    FakeChannel& channel = platform.channel;
    Running<Node> node;
};

TEST_F(NodeTest, startsWithItsDefaultsAndFillsFromTheDevice) {
    EXPECT_EQ(node->nodeId(), 1);
    channel.answer(kDetail, FakeChannel::Answer{true, 500, ""});
    const auto empty = asked<s_NodeDetail>(CB::NodeDetailChanged);
    EXPECT_EQ(std::tuple(empty.nodeId, empty.status, empty.mode.workMode, empty.virtualId, empty.mvr.mode),
              std::tuple(1, 1, 1, 1, -1));
    channel.answer(kDetail, R"({"code":0,"data":{"modelId":7,"sn":"A","version":"v"}})");
    EXPECT_EQ(asked<std::string>(CB::SNChanged), "A");
    EXPECT_EQ(asked<std::string>(CB::NodeVersionChanged), "v");
    EXPECT_EQ(asked<s_Genlock>(CB::NodeGenlockChanged).sourceId, -1);
    EXPECT_EQ(asked<s_GenlockStatus>(CB::NodeGenlockStatusChanged).status, 0);
    EXPECT_EQ(channel.calls().back().query, (LCD::Comm::QueryPairs{{"nodeId", "1"}}));

    const auto now = node->getCurNodeStatus();
    ASSERT_EQ(now.size(), 1u);
    EXPECT_EQ(now[0].modelId, 7);
    LogCapture log;
    channel.answer(kDetail, FakeChannel::Answer{false, 0, ""});
    EXPECT_TRUE(node->getCurNodeStatus().empty());
    EXPECT_TRUE(log.contains("get node status array is nullptr"));
    EXPECT_EQ(asked<std::string>(CB::SNChanged), "A");
}

TEST_F(NodeTest, smallFieldsAreToldEvenWhenTheirReportCantBeRead) {
    channel.answer(kDetail, R"({"code":0,"data":{"nodeId":1}})");
    subscribe();
    asked<s_NodeDetail>(CB::NodeDetailChanged);
    LogCapture log;
    EXPECT_EQ(told<std::vector<s_SlotsStatus>>(0x50107, R"({"stateInfo":[{"slot":1},{"slot":0}]})",
                                               CB::NodeSlotsStatusChanged)
                  .size(),
              2u);
    EXPECT_EQ(told<std::vector<s_SlotsStatus>>(0x50107, "[", CB::NodeSlotsStatusChanged).size(), 2u);
    EXPECT_EQ(
        told<s_NodeMode>(0x50104, R"({"mode":{"workMode":3,"masterSlave":1}})", CB::NodeModeChanged).mode.workMode, 3);
    EXPECT_EQ(told<s_NodeGeneralBody>(0x50102, R"({"general":{"name":"n"}})", CB::NodeNameChanged).name, "n");
    EXPECT_EQ(told<s_NodeGeneralBody>(0x50102, "{", CB::NodeNameChanged).name, "n");
    EXPECT_EQ(told<s_CascadeID>(0x50120, R"({"id":9})", CB::NodeCascadeIdChanged).id, 9);
    EXPECT_EQ(told<s_NodeMonitorModeBody>(0x50127, R"({"mode":2})", CB::MonitorModeChanged).mode, 2);
    EXPECT_EQ(told<s_NodeAuxBody>(0x5013d, R"({"followPreset":1})", CB::NodeAuxFollowPresetChanged).followPreset, 1);
    EXPECT_EQ(told<s_DeviceLayerModeBody>(0x50141, R"({"mode":5})", CB::DeviceLayerModeChanged).mode, 5);
    EXPECT_EQ(told<s_NodeDetail>(0x50100, R"({"modelId":8})", CB::NodeDetailChanged).mode.workMode, 1)
        << "a whole detail replaces everything";
    const std::size_t before = inboxes[CB::NodeDetailChanged].count();
    EXPECT_EQ(platform.receiver.push(0x50100, "{"), std::vector<bool>{false});
    node.stop();
    EXPECT_EQ(inboxes[CB::NodeDetailChanged].count(), before);
    EXPECT_TRUE(log.contains("decode NodeSlotsStatus has failed. Error Code=[ \n"));
    EXPECT_TRUE(log.contains("decode node mode has failed. Error Code={ \n"));
    EXPECT_TRUE(log.contains("decode node detail has failed. Error Code={ \n"));
}

TEST_F(NodeTest, theBackupRelationFollowsReportsThatNameThisNode) {
    const auto masterOf = [this](std::uint32_t report, const char* body) {
        return told<s_DeviceBackupInfo>(report, body, CB::NodeBackupChanged).master;
    };
    subscribe();
    channel.answer(kDetail, R"({"code":0,"data":{"sn":"A"}})");
    asked<std::string>(CB::SNChanged);
    // Named as a slave: the relation is set, then the device is asked for the rest.
    channel.answer(
        kDetail, R"({"code":0,"data":{"sn":"A","deviceBackup":{"master":{"sn":"M","ip":"1"},"slave":[{"sn":"A"}]}}})");
    EXPECT_EQ(masterOf(0x50711, R"([{"masterSN":"X","slaveSN":["Y"]},{"masterSN":"M","slaveSN":["A"]}])").ip, "1");
    EXPECT_EQ(node->nodeDeviceBackupType(), 1);
    EXPECT_EQ(asked<s_DeviceBackupSummary>(CB::BackupSummaryChanged).type, 1);
    const std::size_t fetches = channel.calls().size();
    EXPECT_EQ(masterOf(0x50711, R"([{"masterSN":"X","slaveSN":["Y"]}])").sn, "M");
    EXPECT_EQ(channel.calls().size(), fetches) << "another node's relation is none of ours";

    // The takeover of a slave makes everything stale, that of a master doesn't.
    EXPECT_EQ(told<s_BackupProgress>(0x50716, R"({"progress":100,"state":2})", CB::BackupProcessChanged).progress, 100);
    ASSERT_EQ(platform.messages.posted.size(), 1u);
    EXPECT_EQ(platform.messages.posted[0].id, 0xA0000002u);
    EXPECT_EQ(told<s_BackupProgress>(0x50716, R"({"progress":1,"state":1})", CB::BackupProcessChanged).state, 1);
    EXPECT_EQ(masterOf(0x50714, R"([{"masterSN":"M","slaveSN":["A"]}])").sn, "");
    EXPECT_EQ(node->nodeDeviceBackupType(), 0);
    told<s_BackupProgress>(0x50716, R"({"state":2})", CB::BackupProcessChanged);
    EXPECT_EQ(platform.messages.posted.size(), 1u);
    EXPECT_EQ(platform.messages.alive, 0);

    EXPECT_EQ(masterOf(0x50714, R"([{"masterSN":"A","slaveSN":["B"]}])").sn, "A");
    const std::size_t before = inboxes[CB::NodeBackupChanged].count();
    EXPECT_EQ(platform.receiver.push(0x50714, "[]"), std::vector<bool>{true});
    EXPECT_EQ(platform.receiver.push(0x50711, "{}"), std::vector<bool>{false});
    EXPECT_EQ(platform.receiver.push(0x50716, "{"), std::vector<bool>{false});
    node.stop();
    EXPECT_EQ(inboxes[CB::NodeBackupChanged].count(), before);
}

TEST_F(NodeTest, twoEmptySerialNumbersCountAsEqual) {
    channel.answer(kDetail, R"({"code":0,"data":{"deviceBackup":{"master":{"sn":"M"},"slave":[{"sn":""}]}}})");
    asked<std::string>(CB::SNChanged);
    EXPECT_EQ(node->nodeDeviceBackupType(), 1);
}

TEST_F(NodeTest, changesGoOutInTheirOwnWays) {
    subscribe();
    LogCapture log;
    const auto set = [&](CB kind, const std::any& data) -> bool {
        const std::size_t before = results.count();
        node->asyncSetSubData("page", kind, data, results.callback());
        EXPECT_TRUE(results.waitFor(before + 1));
        return results.all().back();
    };
    auto backup = std::make_shared<std::list<s_CreateOrDeleteBackup>>();
    backup->push_back({"M", {"A"}});
    EXPECT_EQ(node->getSendDataCode(), -1);
    channel.answer(kBackup, R"({"code":0,"data":{"failList":[]}})");
    EXPECT_TRUE(set(CB::CreateBackup, backup));
    EXPECT_EQ(channel.timeoutMs(), 60000);
    EXPECT_EQ(channel.lastChange().body, R"([{"masterSN":"M","slaveSN":["A"]}])");
    channel.answer(kBackup, R"({"code":0,"data":{"failList":["A"]}})");
    EXPECT_FALSE(set(CB::CreateBackup, backup));
    EXPECT_EQ(node->getSendDataCode(), 0);
    channel.answer(kBackup, R"({"code":17,"message":"busy"})");
    EXPECT_FALSE(set(CB::CreateBackup, backup));
    EXPECT_EQ(node->getSendDataCode(), 17);
    channel.answer(kBackup, "{");
    EXPECT_FALSE(set(CB::CreateBackup, backup));
    EXPECT_EQ(node->getSendDataCode(), 17);
    EXPECT_TRUE(set(CB::NodeAuxFollowPresetChanged, std::make_shared<s_NodeAuxFollowPresetRequest>()));
    EXPECT_TRUE(log.contains("info: setNodeAuxFollowPreset success"));
    channel.answer("/zelto/v1/node/device-layer-mode", FakeChannel::Answer{true, 500, ""});
    EXPECT_FALSE(set(CB::DeviceLayerModeChanged, std::make_shared<s_DeviceLayerModeBody>()));
    EXPECT_FALSE(set(CB::DeviceLayerModeChanged, 1));
    EXPECT_EQ(log.count("warning: setDeviceLayerMode failed"), 1u) << "told of what was sent";
    EXPECT_EQ(inboxes[CB::DeviceLayerModeChanged].at<s_DeviceLayerModeBody>(0).mode, 0) << "a failure redelivers";
    EXPECT_FALSE(set(CB::NodeCascadeIdChanged, std::shared_ptr<s_CascadeID>()));
    EXPECT_TRUE(log.contains("id is nullptr \n //node.h:setCascadeID()#"));
    EXPECT_FALSE(set(CB::DeleteBackup, 1));
    EXPECT_TRUE(log.contains("need type is s_CreateOrDeleteBackupArray but has int"));
}

}  // namespace
