#pragma once

#include <atomic>
#include <string>

#include "lcd/memorycache/inode.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class NodeSetter : public ObjectSamplingImpl<int, MemoryCache::INode::RequestCBType> {
public:
    /// The code of the last answer to a request for a backup. Any thread.
    int getSendDataCode() const { return sendDataCode; }

    // sampling thread
    bool setNodeMode(const RequestData& request);
    bool setNodeCascadeID(const RequestData& request);
    bool createNodeBackup(const RequestData& request);
    bool deleteNodeBackup(const RequestData& request);
    bool setNodeMonitoorModeBackup(const RequestData& request);
    bool setNodeAuxFollowPreset(const RequestData& request);
    bool setDeviceLayerMode(const RequestData& request);

    std::string objectTypeName() const override { return "node"; }
    void registerSetSubDataCallback() override;

private:
    std::atomic<int> sendDataCode{-1};
};

}  // namespace LCD::MemoryCacheImpl
