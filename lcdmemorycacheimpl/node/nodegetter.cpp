#include "lcdmemorycacheimpl/node/nodegetter.h"

#include <algorithm>

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/platformmessage.h"
#include "lcdprotocolimpl/node/noderequests.h"

namespace LCD::MemoryCacheImpl {

using namespace ProtocolImpl;
namespace constants = MemoryCache::constants;

namespace {

bool names(const std::list<std::string>& serialNumbers, const std::string& sn) {
    return std::find(serialNumbers.begin(), serialNumbers.end(), sn) != serialNumbers.end();
}

}  // namespace

void NodeGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    user = ktp::api::get().find<MemoryCache::IUser>(constants::OBJ_MEMORYCACHE_USER_NAME);
    messageCenter = ktp::api::get().find<ktp::IMessageCenter>(ktp::kMessageCenterName);
}

void NodeGetter::registerReportDecodeCallback() {
    if (reportReceiver == nullptr) {
        KT_WARN("Report receiver is null");
        return;
    }
    bindReport(0x50716, &NodeGetter::decodeNodeBackupProgress);
    bindReport(0x50711, &NodeGetter::decodeCreateNodeBackup);
    bindReport(0x50714, &NodeGetter::decodeDeleteNodeBackup);
    bindReport(0x50107, &NodeGetter::decodeNodeSlotsStatus);
    bindReport(0x50104, &NodeGetter::decodeNodeMode);
    bindReport(0x50102, &NodeGetter::decodeNodeBasicInfo);
    bindReport(0x50100, &NodeGetter::decodeNodeDetailInfo);
    bindReport(0x50120, &NodeGetter::decodeCascadeID);
    bindReport(0x50127, &NodeGetter::decodeNodeMonitorMode);
    bindReport(0x5013d, &NodeGetter::decodeNodeAuxSaveToPreset);
    bindReport(0x50141, &NodeGetter::decodeDeviceLayerMode);
}

void NodeGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::BackupSummaryChanged, &NodeGetter::notifyBackupSummaryChanged);
    bindHandler(CB::BackupProcessChanged, &NodeGetter::notifyBackupProcessChanged);
    bindHandler(CB::NodeBackupChanged, &NodeGetter::notifyNodeBackupChanged);
    bindHandler(CB::NodeCascadeIdChanged, &NodeGetter::notifyNodeCascadeIdChanged);
    bindHandler(CB::NodeModeChanged, &NodeGetter::notifyNodeModeChanged);
    bindHandler(CB::NodeSlotsStatusChanged, &NodeGetter::notifyNodeSlotsStatusChanged);
    bindHandler(CB::NodeVersionChanged, &NodeGetter::notifyNodeVersionChanged);
    bindHandler(CB::SNChanged, &NodeGetter::notifySNChanged);
    bindHandler(CB::NodeGenlockChanged, &NodeGetter::notifyNodeGenlockChanged);
    bindHandler(CB::NodeGenlockStatusChanged, &NodeGetter::notifyNodeGenlockStatusChanged);
    bindHandler(CB::NodeNameChanged, &NodeGetter::notifyNodeNameChanged);
    bindHandler(CB::NodeDetailChanged, &NodeGetter::notifyNodeDetailChanged);
    bindHandler(CB::MonitorModeChanged, &NodeGetter::notifyMonitorModeChanged);
    bindHandler(CB::NodeAuxFollowPresetChanged, &NodeGetter::notifyNodeAuxFollowPresetChanged);
    bindHandler(CB::DeviceLayerModeChanged, &NodeGetter::notifyDeviceLayerModeChanged);
}

// ---------------------------------------------------------------------------------- any thread

void NodeGetter::notifyCacheInitiativeChanged(const std::string& name, CB type,
                                              const std::function<void(std::any)>& callback) {
    notifyCacheChangedWithLambda(name, type, callback);
}

int NodeGetter::nodeDeviceBackupType() {
    LockGuard lock(cacheMutex);
    return backupTypeLocked();
}

int NodeGetter::backupTypeLocked() const {
    const auto& slaves = cache.deviceBackup.slave;
    return std::any_of(slaves.begin(), slaves.end(),
                       [this](const s_BackupDetail& slave) LCD_REQUIRES(cacheMutex) { return slave.sn == cache.sn; })
               ? 1
               : 0;
}

std::vector<s_NodeStatus> NodeGetter::getCurNodeStatus() {
    LockGuard lock(cacheMutex);
    s_NodeDetail now;
    if (!getNodeDetail(httpChannel, localNodeId, now)) {
        KT_WARN("get node status array is nullptr");
        return {};
    }
    return {{now.modelId, now.status}};
}

// ------------------------------------------------------------------------------- reload thread

void NodeGetter::reloadCache(const RequestData& /*request*/) {
    LockGuard lock(cacheMutex);
    reloadDataLocked();
}

void NodeGetter::reloadDataLocked() { cacheDirty = !getNodeDetail(httpChannel, localNodeId, cache); }

void NodeGetter::notifyBackupSummaryChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(s_DeviceBackupSummary{backupTypeLocked(), {}, {}, true}, request);
}

void NodeGetter::notifyBackupProcessChanged(const RequestData& request) {
    LockGuard lock(backupMutex);
    notifySubCacheChanged(backupProgress, request);
}

void NodeGetter::notifyNodeBackupChanged(const RequestData& request) {
    deliverPart(&s_NodeDetail::deviceBackup, request);
}

void NodeGetter::notifyNodeCascadeIdChanged(const RequestData& request) {
    deliverPart([](const s_NodeDetail& node) { return s_CascadeID{node.virtualId}; }, request);
}

void NodeGetter::notifyNodeModeChanged(const RequestData& request) {
    deliverPart([](const s_NodeDetail& node) { return s_NodeMode{node.nodeId, node.mode}; }, request);
}

void NodeGetter::notifyNodeSlotsStatusChanged(const RequestData& request) {
    deliverPart(&s_NodeDetail::stateInfo, request);
}

void NodeGetter::notifyNodeVersionChanged(const RequestData& request) { deliverPart(&s_NodeDetail::version, request); }

void NodeGetter::notifySNChanged(const RequestData& request) { deliverPart(&s_NodeDetail::sn, request); }

void NodeGetter::notifyNodeGenlockChanged(const RequestData& request) { deliverPart(&s_NodeDetail::genlock, request); }

void NodeGetter::notifyNodeGenlockStatusChanged(const RequestData& request) {
    deliverPart(&s_NodeDetail::genlockStatus, request);
}

void NodeGetter::notifyNodeNameChanged(const RequestData& request) { deliverPart(&s_NodeDetail::general, request); }

void NodeGetter::notifyNodeDetailChanged(const RequestData& request) { deliverCache(request); }

void NodeGetter::notifyMonitorModeChanged(const RequestData& request) { deliverPart(&s_NodeDetail::mvr, request); }

void NodeGetter::notifyNodeAuxFollowPresetChanged(const RequestData& request) {
    deliverPart(&s_NodeDetail::aux, request);
}

void NodeGetter::notifyDeviceLayerModeChanged(const RequestData& request) {
    deliverPart(&s_NodeDetail::deviceLayerMode, request);
}

// ----------------------------------------------------------------------------- receiver thread

bool NodeGetter::decodeNodeBackupProgress(const std::string& body) {
    constexpr int kTakenOver = 2;
    s_BackupProgress report;
    if (!decodeReport(body, report, "node backup progress")) {
        return false;
    }
    LockGuard lock(backupMutex);
    backupProgress = report;
    if (report.state == kTakenOver && nodeDeviceBackupType() == 1) {
        // This slave stands in for its master from now on: everything is read anew, under a new login.
        postToComponents(messageCenter, constants::MSG_DEVICE_DATA_REPLACED);
    }
    notifyCacheChanged({}, CB::BackupProcessChanged);
    KT_INFO("backup state:{0}, precess:{1}", report.state, report.progress);
    return true;
}

bool NodeGetter::decodeCreateNodeBackup(const std::string& body) {
    std::list<s_CreateOrDeleteBackup> report;
    if (!decodeReport(body, report, "device create backup")) {
        return false;
    }
    if (report.empty()) {
        return true;
    }
    LockGuard lock(cacheMutex);
    for (const s_CreateOrDeleteBackup& created : report) {
        takeBackupLocked(created);
    }
    notifyCacheChanged({}, CB::NodeBackupChanged);
    return true;
}

void NodeGetter::takeBackupLocked(const s_CreateOrDeleteBackup& created) {
    if (cache.sn != created.masterSN && !names(created.slaveSN, cache.sn)) {
        return;
    }
    cache.deviceBackup.slave.clear();
    for (const std::string& sn : created.slaveSN) {
        cache.deviceBackup.slave.push_back({sn, {}});
    }
    cache.deviceBackup.master.sn = created.masterSN;
    reloadDataLocked();  // the addresses and the rest come from the device
}

bool NodeGetter::decodeDeleteNodeBackup(const std::string& body) {
    std::list<s_CreateOrDeleteBackup> report;
    if (!decodeReport(body, report, "device delete backup")) {
        return false;
    }
    if (report.empty()) {
        return true;
    }
    LockGuard lock(cacheMutex);
    for (const s_CreateOrDeleteBackup& deleted : report) {
        dropBackupLocked(deleted);
    }
    notifyCacheChanged({}, CB::NodeBackupChanged);
    return true;
}

void NodeGetter::dropBackupLocked(const s_CreateOrDeleteBackup& deleted) {
    if (cache.sn == deleted.masterSN) {
        cache.deviceBackup.master.sn = deleted.masterSN;
        cache.deviceBackup.slave.clear();
    }
    if (names(deleted.slaveSN, cache.sn)) {
        cache.deviceBackup.master.sn.clear();
        cache.deviceBackup.slave.clear();
    }
}

bool NodeGetter::decodeNodeDetailInfo(const std::string& body) {
    return mergeReport<s_NodeDetail>(
        body, "node detail", [](s_NodeDetail& node, const s_NodeDetail& report) { node = report; },
        CB::NodeDetailChanged);
}

// The small fields: a report that can't be read tells the subscribers of the old value.

bool NodeGetter::decodeNodeSlotsStatus(const std::string& body) {
    return mergeReport<s_NodeSlotsStatus>(
        body, "NodeSlotsStatus",
        [](s_NodeDetail& node, const s_NodeSlotsStatus& report) { node.stateInfo = report.stateInfo; },
        CB::NodeSlotsStatusChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeNodeMode(const std::string& body) {
    return mergeReport<s_NodeMode>(
        body, "node mode", [](s_NodeDetail& node, const s_NodeMode& report) { node.mode = report.mode; },
        CB::NodeModeChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeNodeBasicInfo(const std::string& body) {
    return mergeReport<s_NodeGenera>(
        body, "node mode", [](s_NodeDetail& node, const s_NodeGenera& report) { node.general = report.general; },
        CB::NodeNameChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeCascadeID(const std::string& body) {
    return mergeReport<s_CascadeID>(
        body, "device cascadeId", [](s_NodeDetail& node, const s_CascadeID& report) { node.virtualId = report.id; },
        CB::NodeCascadeIdChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeNodeMonitorMode(const std::string& body) {
    return mergeReport<s_MonitorMode>(
        body, "monitor mode", [](s_NodeDetail& node, const s_MonitorMode& report) { node.mvr.mode = report.mode; },
        CB::MonitorModeChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeNodeAuxSaveToPreset(const std::string& body) {
    return mergeReport<s_NodeAuxBody>(
        body, "node aux save to preset", [](s_NodeDetail& node, const s_NodeAuxBody& report) { node.aux = report; },
        CB::NodeAuxFollowPresetChanged, AfterReport::tellAlways);
}

bool NodeGetter::decodeDeviceLayerMode(const std::string& body) {
    return mergeReport<s_DeviceLayerModeBody>(
        body, "device layer mode",
        [](s_NodeDetail& node, const s_DeviceLayerModeBody& report) { node.deviceLayerMode = report; },
        CB::DeviceLayerModeChanged, AfterReport::tellAlways);
}

}  // namespace LCD::MemoryCacheImpl
