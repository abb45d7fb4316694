#include "lcdprotocolimpl/node/noderequests.h"

#include "lcdprotocolimpl/core/request.h"
#include "lcdprotocolimpl/core/topic.h"

namespace LCD::ProtocolImpl {

namespace Internal {

static void initQueryString(const std::vector<std::pair<GetNodeBriefListParamType, std::string>>& parameters,
                            Comm::QueryPairs& query) {
    for (const auto& [type, value] : parameters) {
        if (type == GetNodeBriefListParamType::Page) {
            query.emplace_back("page", value);
        } else if (type == GetNodeBriefListParamType::Count) {
            query.emplace_back("count", value);
        }
    }
}

}  // namespace Internal

bool getNodeDetail(Comm::IHttpChannel* channel, int nodeId, s_NodeDetail& out) {
    return Request(channel, "/zelto/v1/node/detail").query("nodeId", std::to_string(nodeId)).get(out);
}

bool getNodeBriefList(Comm::IHttpChannel* channel,
                      const std::vector<std::pair<GetNodeBriefListParamType, std::string>>& parameters,
                      std::vector<s_NodeBrief>& out, s_NodeStatusStatistics& statistics) {
    Comm::QueryPairs query;
    Internal::initQueryString(parameters, query);
    s_NodeBriefPage page;
    if (!Request(channel, "/zelto/v1/node/list").query(std::move(query)).get(page)) {
        return false;
    }
    out = std::move(page.list);
    statistics = {page.onlineNum, page.offlineNum, page.abnormalNum};
    return true;
}

bool setNodeMode(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeMode> value) {
    return Request(channel, "/zelto/v1/node/mode").put(*value);
}

bool setCascadeID(Comm::IHttpChannel* channel, std::shared_ptr<s_CascadeID> id) {
    if (id == nullptr) {
        logFailure(KT::LogSite::here(), "id is nullptr");
        return false;
    }
    return Request(channel, "/zelto/v1/node/virtual-id").put(*id);
}

bool createDeviceBackup(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_CreateOrDeleteBackup>> list,
                        int& code) {
    s_CreateOrDeleteBackupResult result;
    return Request(channel, "/zelto/v1/node/backup").timeout(60000).codeInto(code).put(*list, result) &&
           result.failList.empty();
}

bool deleteDeviceBackup(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_CreateOrDeleteBackup>> list) {
    return Request(channel, "/zelto/v1/node/backup").remove(*list);
}

bool setMonitorMode(Comm::IHttpChannel* channel, std::shared_ptr<s_MonitorMode> value) {
    return Request(channel, "/zelto/v1/node/mvr/mode").post(*value);
}

bool setNodeAuxFollowPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeAuxFollowPresetRequest> value) {
    return Request(channel, "/zelto/v1/node/aux/follow-preset").post(*value);
}

bool setDeviceLayerMode(Comm::IHttpChannel* channel, std::shared_ptr<s_DeviceLayerModeBody> value) {
    return Request(channel, "/zelto/v1/node/device-layer-mode").post(*value);
}

}  // namespace LCD::ProtocolImpl
