#include <fmt/format.h>

#include <list>
#include <nlohmann/json.hpp>

#include "lcd/memorycache/inode.h"
#include "lcd/memorycache/inodebrief.h"
#include "lcdprotocolimpl/node/node.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;
using nlohmann::json;

namespace {

// The device keeps a node's name and model with its detail.
json nodeList(const json& state, const json&) {
    const json& node = state.at("node");
    json list = node.at("list");
    json details = node.at("others");
    details.push_back(node.at("detail"));
    for (json& brief : list) {
        for (const json& detail : details) {
            if (detail.at("nodeId") == brief.at("nodeId")) {
                brief.update({{"modelId", detail.at("modelId")}, {"name", detail.at("general").at("name")}});
            }
        }
    }
    return list;
}

std::string summaryText(const s_DeviceBackupSummary& summary) {
    return fmt::format(R"({{"type":{},"master":{},"slave":{},"valid":{}}})", summary.type, toJson(summary.master),
                       toJson(summary.slave), summary.valid ? 1 : 0);
}

std::vector<Kind> nodeKinds() {
    using CB = INode::RequestCBType;
    using Backups = std::list<s_CreateOrDeleteBackup>;
    return {
        mirrors(delivers<s_NodeDetail>("NodeDetailChanged", CB::NodeDetailChanged), "/node/detail",
                {{"/genlock", "no reply and no report fills it", false},
                 {"/genlockStatus", "no reply and no report fills it", false}}),
        delivers<s_DeviceBackupSummary>("BackupSummaryChanged", CB::BackupSummaryChanged,
                                        "whether this node stands in for another", &summaryText),
        delivers<s_BackupProgress>("BackupProcessChanged", CB::BackupProcessChanged, "as last reported"),
        settable<Backups>(neverDelivered("DeleteBackup", CB::DeleteBackup, "to set alone")),
        settable<Backups>(neverDelivered("CreateBackup", CB::CreateBackup, "to set alone")),
        mirrors(delivers<s_DeviceBackupInfo>("NodeBackupChanged", CB::NodeBackupChanged), "/node/detail/deviceBackup"),
        settable<s_CascadeID>(delivers<s_CascadeID>("NodeCascadeIdChanged", CB::NodeCascadeIdChanged)),
        settable<s_NodeMode>(delivers<s_NodeMode>("NodeModeChanged", CB::NodeModeChanged)),
        mirrors(delivers<std::vector<s_SlotsStatus>>("NodeSlotsStatusChanged", CB::NodeSlotsStatusChanged),
                "/node/detail/stateInfo"),
        delivers<std::string>("NodeVersionChanged", CB::NodeVersionChanged),
        delivers<std::string>("SNChanged", CB::SNChanged, "the serial number"),
        delivers<s_Genlock>("NodeGenlockChanged", CB::NodeGenlockChanged, "filled by no reply and no report"),
        delivers<s_GenlockStatus>("NodeGenlockStatusChanged", CB::NodeGenlockStatusChanged, "as before"),
        mirrors(delivers<s_NodeGeneralBody>("NodeNameChanged", CB::NodeNameChanged), "/node/detail/general"),
        settable<s_MonitorMode>(delivers<s_NodeMonitorModeBody>("MonitorModeChanged", CB::MonitorModeChanged)),
        settable<s_NodeAuxFollowPresetRequest>(
            delivers<s_NodeAuxBody>("NodeAuxFollowPresetChanged", CB::NodeAuxFollowPresetChanged)),
        settable<s_DeviceLayerModeBody>(
            delivers<s_DeviceLayerModeBody>("DeviceLayerModeChanged", CB::DeviceLayerModeChanged)),
    };
}

}  // namespace

std::vector<Component> nodeRows() {
    using Brief = INodeBrief::RequestCBType;
    return {
        component<INode>(
            "Node", "lcdMemoryCacheNode", nodeKinds(),
            {0x50716, 0x50711, 0x50714, 0x50107, 0x50104, 0x50102, 0x50100, 0x50120, 0x50127, 0x5013d, 0x50141}),
        component<INodeBrief>(
            "NodeBrief", "lcdMemoryCacheNodeBrief",
            {mirrors(delivers<std::vector<s_NodeBrief>>("NodeListChanged", Brief::NodeListChanged),
                     {.device = nodeList, .identity = "nodeId", .stale = {{"/*", "no report tells of the list"}}})}),
    };
}

}  // namespace panel
