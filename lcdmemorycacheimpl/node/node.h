#pragma once

#include <vector>

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/node/nodegetter.h"
#include "lcdmemorycacheimpl/node/nodesetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::INode, NodeGetter, NodeSetter, DirtyOnTokenAndData,
                                     RedeliverOnFailure>;

class Node final
    : public ComponentShell<MemoryCache::INode, NodeGetter, NodeSetter, DirtyOnTokenAndData, RedeliverOnFailure> {
public:
    Node();
    ~Node() override;

    int nodeId() const override { return getter->nodeId(); }
    void asyncGetSubData(const std::string& name, RequestCBType type, const Delivery& callback) override {
        getter->notifyCacheInitiativeChanged(name, type, callback);
    }
    void asyncSetSubData(const std::string& name, RequestCBType type, const std::any& data,
                         const SetResult& callback) override {
        setter->asyncSetSubData({name, type, nodeId(), data, callback});
    }
    std::vector<ProtocolImpl::s_NodeStatus> getCurNodeStatus() override { return getter->getCurNodeStatus(); }
    int getSendDataCode() override { return setter->getSendDataCode(); }
    int nodeDeviceBackupType() override { return getter->nodeDeviceBackupType(); }
};

}  // namespace LCD::MemoryCacheImpl
