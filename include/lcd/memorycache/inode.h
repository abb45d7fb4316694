// The node: the device on which the panel sits.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lcdprotocolimpl/node/node.h"

namespace LCD::MemoryCache {

/// Mirror of the local node. The platform's lookup name is "lcdMemoryCacheNode". Source: "/zelto/v1/node/detail",
/// reports of group 0x501 and 0x507. Every delivery holds a `std::shared_ptr` to what stands at its kind.
class INode {
public:
    enum class RequestCBType : std::int32_t {
        BackupSummaryChanged = 1,         ///< `s_DeviceBackupSummary`: whether this node stands in for another
        BackupProcessChanged = 2,         ///< `s_BackupProgress`, as last reported
        DeleteBackup = 3,                 ///< to set: `std::list<s_CreateOrDeleteBackup>`
        CreateBackup = 4,                 ///< to set: `std::list<s_CreateOrDeleteBackup>`
        NodeBackupChanged = 5,            ///< `s_DeviceBackupInfo`
        NodeCascadeIdChanged = 6,         ///< `s_CascadeID`, delivered and set
        NodeModeChanged = 7,              ///< `s_NodeMode`, delivered and set
        NodeSlotsStatusChanged = 8,       ///< `std::vector<s_SlotsStatus>`
        NodeVersionChanged = 9,           ///< `std::string`
        SNChanged = 10,                   ///< `std::string`, the serial number
        NodeGenlockChanged = 11,          ///< `s_Genlock`, which no report and no reply fills
        NodeGenlockStatusChanged = 12,    ///< `s_GenlockStatus`, as before
        NodeNameChanged = 13,             ///< `s_NodeGeneralBody`
        NodeDetailChanged = 14,           ///< `s_NodeDetail`, the mirror
        MonitorModeChanged = 16,          ///< `s_NodeMonitorModeBody`; to set: `s_MonitorMode`
        NodeAuxFollowPresetChanged = 17,  ///< `s_NodeAuxBody`; to set: `s_NodeAuxFollowPresetRequest`
        DeviceLayerModeChanged = 18,      ///< `s_DeviceLayerModeBody`, delivered and set
    };

    virtual ~INode() = default;

    /// The id of the local node. Any thread, without a lock.
    virtual int nodeId() const = 0;
    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
    /// Queues a change. `callback`, which may be empty, hears whether the device took it, in the sampling thread; it
    /// never fires for a request that a later one of the same type replaced. Any thread.
    virtual void asyncSetSubData(const std::string& name, RequestCBType type, const std::any& data,
                                 const std::function<void(bool)>& callback) = 0;
    /// Model and status of the node, asked of the device in the caller's thread; empty when that fails. Any thread that
    /// may wait. Not from a callback of any component.
    virtual std::vector<ProtocolImpl::s_NodeStatus> getCurNodeStatus() = 0;
    /// The code of the last answer to a change of kind `CreateBackup`; -1 before the first. Any thread.
    virtual int getSendDataCode() = 0;
    /// 1 when this node stands in for another, else 0. Any thread. Not from a callback of any component.
    virtual int nodeDeviceBackupType() = 0;
};

}  // namespace LCD::MemoryCache
