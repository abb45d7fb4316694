#include "lcdprotocolimpl/assess/assessrequests.h"

#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

namespace {

/// A question is sent like a change and fails in the words of a fetch.
Request ask(Comm::IHttpChannel* channel, const char* path, KT::LogSite site = KT::LogSite::here()) {
    Request request(channel, path, site);
    request.logSend(SendLog::sendGet).logReply(ReplyLog::getDecode);
    return request;
}

}  // namespace

bool assessThumbTimiing(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ThumbTimingCheck>> question,
                        std::shared_ptr<std::vector<s_TimingCheckResult>> result) {
    return ask(channel, "/zelto/v1/interface/thumbtiming-check").post(*question, *result);
}

bool assessAdvancedTimiing(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_DetailTimingCheck>> question,
                           std::shared_ptr<std::vector<s_TimingCheckResult>> result) {
    return ask(channel, "/zelto/v1/interface/timing-check").post(*question, *result);
}

bool assessLayerWindow(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerWindow>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layers-window").put(*question, *result);
}

bool assessLayerSwitch(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerSwitch>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layers-switch").put(*question, *result);
}

bool assessLayerSource(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerSource>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layers-source").put(*question, *result);
}

bool assessLayerRatio(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerRatio>> question,
                      std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layers-aspect-ratio").put(*question, *result);
}

bool assessLayerGeneral(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerIdGeneral>> question,
                        std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layer-general").post(*question, *result);
}

bool assessLayerCutout(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_LayerCutout>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/layers-cutout").put(*question, *result);
}

bool assessMOSAICCapaccity(Comm::IHttpChannel* channel,
                           std::shared_ptr<std::list<s_InterfaceMOSAICDetailBody>> question,
                           std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/mosaic-source").put(*question, *result);
}

bool assessSourceCapaccity(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeSubcardsMode> question,
                           std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/subcard-mode").put(*question, *result);
}

bool assessLayerZoomMode(Comm::IHttpChannel* channel, std::shared_ptr<s_LayerZoomModeBody> question,
                         std::shared_ptr<std::vector<s_LayerAssessResult>> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/scale-mode").put(*question, *result);
}

bool assessPresetPlay(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetPlayAssess> question,
                      std::shared_ptr<s_PresetPlayAssessResult> result) {
    return ask(channel, "/zelto/v1/system/auxiliary/assess/preset/play").post(*question, *result);
}

}  // namespace LCD::ProtocolImpl
