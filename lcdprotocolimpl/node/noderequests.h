#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/node/node.h"

namespace LCD::ProtocolImpl {

enum class GetNodeBriefListParamType : std::int32_t { Page = 1, Count };

bool getNodeDetail(Comm::IHttpChannel* channel, int nodeId, s_NodeDetail& out);
bool getNodeBriefList(Comm::IHttpChannel* channel,
                      const std::vector<std::pair<GetNodeBriefListParamType, std::string>>& parameters,
                      std::vector<s_NodeBrief>& out, s_NodeStatusStatistics& statistics);
bool setNodeMode(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeMode> value);
/// Refuses a null pointer.
bool setCascadeID(Comm::IHttpChannel* channel, std::shared_ptr<s_CascadeID> id);
/// Takes up to a minute. `code` receives the code of the answer, if there was one that could be read; nodes that the
/// device names as failed make it false with code 0.
bool createDeviceBackup(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_CreateOrDeleteBackup>> list,
                        int& code);
bool deleteDeviceBackup(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_CreateOrDeleteBackup>> list);
bool setMonitorMode(Comm::IHttpChannel* channel, std::shared_ptr<s_MonitorMode> value);
bool setNodeAuxFollowPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeAuxFollowPresetRequest> value);
bool setDeviceLayerMode(Comm::IHttpChannel* channel, std::shared_ptr<s_DeviceLayerModeBody> value);

}  // namespace LCD::ProtocolImpl
