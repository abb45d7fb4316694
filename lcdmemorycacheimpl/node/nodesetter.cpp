#include "lcdmemorycacheimpl/node/nodesetter.h"

#include "lcdprotocolimpl/node/noderequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::INode::RequestCBType;
using ProtocolImpl::s_CreateOrDeleteBackup;

namespace {

/// Tells in the log what became of a change that was sent.
bool logOutcome(bool taken, const char* success, const char* failure, KT::LogSite site = KT::LogSite::here()) {
    KT::log(taken ? spdlog::level::info : spdlog::level::warn, site, fmt::runtime(taken ? success : failure));
    return taken;
}

}  // namespace

void NodeSetter::registerSetSubDataCallback() {
    bindHandler(CB::NodeModeChanged, &NodeSetter::setNodeMode);
    bindHandler(CB::NodeCascadeIdChanged, &NodeSetter::setNodeCascadeID);
    bindHandler(CB::CreateBackup, &NodeSetter::createNodeBackup);
    bindHandler(CB::DeleteBackup, &NodeSetter::deleteNodeBackup);
    bindHandler(CB::MonitorModeChanged, &NodeSetter::setNodeMonitoorModeBackup);
    bindHandler(CB::NodeAuxFollowPresetChanged, &NodeSetter::setNodeAuxFollowPreset);
    bindHandler(CB::DeviceLayerModeChanged, &NodeSetter::setDeviceLayerMode);
}

bool NodeSetter::setNodeMode(const RequestData& request) {
    return sendRecord(request, "s_NodeMode", &ProtocolImpl::setNodeMode);
}

bool NodeSetter::setNodeCascadeID(const RequestData& request) {
    return sendRecordOrNull(request, "s_CascadeID", &ProtocolImpl::setCascadeID);
}

bool NodeSetter::createNodeBackup(const RequestData& request) {
    const auto list = recordOf<std::list<s_CreateOrDeleteBackup>>(request, "s_CreateOrDeleteBackupArray");
    int code = sendDataCode;
    const bool created = list != nullptr && ProtocolImpl::createDeviceBackup(httpChannel, list, code);
    sendDataCode = code;
    return created;
}

bool NodeSetter::deleteNodeBackup(const RequestData& request) {
    return sendRecord(request, "s_CreateOrDeleteBackupArray", &ProtocolImpl::deleteDeviceBackup);
}

bool NodeSetter::setNodeMonitoorModeBackup(const RequestData& request) {
    return sendRecord(request, "s_MonitorMode", &ProtocolImpl::setMonitorMode);
}

bool NodeSetter::setNodeAuxFollowPreset(const RequestData& request) {
    const auto value = recordOf<ProtocolImpl::s_NodeAuxFollowPresetRequest>(request, "s_NodeAuxFollowPresetRequest");
    return value != nullptr && logOutcome(ProtocolImpl::setNodeAuxFollowPreset(httpChannel, value),
                                          "setNodeAuxFollowPreset success", "setNodeAuxFollowPreset failed");
}

bool NodeSetter::setDeviceLayerMode(const RequestData& request) {
    const auto value = recordOf<ProtocolImpl::s_DeviceLayerModeBody>(request, "s_DeviceLayerModeBody");
    return value != nullptr && logOutcome(ProtocolImpl::setDeviceLayerMode(httpChannel, value),
                                          "setDeviceLayerMode success", "setDeviceLayerMode failed");
}

}  // namespace LCD::MemoryCacheImpl
