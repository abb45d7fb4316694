#include "lcdprotocolimpl/preset/presetrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getPresetDetail(Comm::IHttpChannel* channel, s_PresetDetailPage& out) {
    return Request(channel, "/zelto/v1/preset/list-detail").get(out);
}

bool applyPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetApply> apply, int sequence) {
    return Request(channel, "/zelto/v1/preset/play").sequence(sequence).put(*apply);
}

bool createPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetCreate> create) {
    return Request(channel, "/zelto/v1/preset/create-assign").put(*create);
}

bool updatePresetName(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetGeneral> general) {
    return Request(channel, "/zelto/v1/preset/general").put(*general);
}

bool deletePreset(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_PresetId>> ids) {
    return Request(channel, "/zelto/v1/preset").remove(*ids);
}

}  // namespace LCD::ProtocolImpl
