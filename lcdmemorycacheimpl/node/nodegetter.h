#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "ktp/imessagecenter.h"
#include "lcd/memorycache/inode.h"
#include "lcd/memorycache/iuser.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/node/node.h"

namespace LCD::MemoryCacheImpl {

class NodeGetter : public ObjectCacheImpl<ProtocolImpl::s_NodeDetail, int, MemoryCache::INode::RequestCBType> {
public:
    using CB = MemoryCache::INode::RequestCBType;

    // any thread
    int nodeId() const { return localNodeId; }
    void notifyCacheInitiativeChanged(const std::string& name, CB type, const std::function<void(std::any)>& callback);
    int nodeDeviceBackupType();
    /// Asks the device in the caller's thread; the mirror isn't touched.
    std::vector<ProtocolImpl::s_NodeStatus> getCurNodeStatus();

    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "node"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyBackupSummaryChanged(const RequestData& request);
    void notifyBackupProcessChanged(const RequestData& request);
    void notifyNodeBackupChanged(const RequestData& request);
    void notifyNodeCascadeIdChanged(const RequestData& request);
    void notifyNodeModeChanged(const RequestData& request);
    void notifyNodeSlotsStatusChanged(const RequestData& request);
    void notifyNodeVersionChanged(const RequestData& request);
    void notifySNChanged(const RequestData& request);
    void notifyNodeGenlockChanged(const RequestData& request);
    void notifyNodeGenlockStatusChanged(const RequestData& request);
    void notifyNodeNameChanged(const RequestData& request);
    void notifyNodeDetailChanged(const RequestData& request);
    void notifyMonitorModeChanged(const RequestData& request);
    void notifyNodeAuxFollowPresetChanged(const RequestData& request);
    void notifyDeviceLayerModeChanged(const RequestData& request);

    // receiver thread
    bool decodeNodeBackupProgress(const std::string& body);
    bool decodeCreateNodeBackup(const std::string& body);
    bool decodeDeleteNodeBackup(const std::string& body);
    bool decodeNodeSlotsStatus(const std::string& body);
    bool decodeNodeMode(const std::string& body);
    bool decodeNodeBasicInfo(const std::string& body);
    bool decodeNodeDetailInfo(const std::string& body);
    bool decodeCascadeID(const std::string& body);
    bool decodeNodeMonitorMode(const std::string& body);
    bool decodeNodeAuxSaveToPreset(const std::string& body);
    bool decodeDeviceLayerMode(const std::string& body);

private:
    /// Fetches the mirror; a failure leaves it as it was, and dirty.
    void reloadDataLocked() LCD_REQUIRES(cacheMutex);
    int backupTypeLocked() const LCD_REQUIRES(cacheMutex);
    /// One entry of a report on backups: the relation as it is now, with what the device tells of it.
    void takeBackupLocked(const ProtocolImpl::s_CreateOrDeleteBackup& created) LCD_REQUIRES(cacheMutex);
    void dropBackupLocked(const ProtocolImpl::s_CreateOrDeleteBackup& deleted) LCD_REQUIRES(cacheMutex);

    std::atomic<int> localNodeId{1};  // read by other components without a lock
    // fixed after start
    MemoryCache::IUser* user = nullptr;
    ktp::IMessageCenter* messageCenter = nullptr;
    // comes before cacheMutex
    Mutex backupMutex;
    ProtocolImpl::s_BackupProgress backupProgress LCD_GUARDED_BY(backupMutex);
};

}  // namespace LCD::MemoryCacheImpl
