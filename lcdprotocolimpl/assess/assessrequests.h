#pragma once

#include <list>
#include <memory>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/assess/assess.h"
#include "lcdprotocolimpl/interface/mosaic.h"
#include "lcdprotocolimpl/layer/layerdetail.h"
#include "lcdprotocolimpl/node/subcard.h"

namespace LCD::ProtocolImpl {

// Each fills what stands behind `result`; a failure leaves it as it was.

bool assessThumbTimiing(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_ThumbTimingCheck>> question,
                        std::shared_ptr<std::vector<s_TimingCheckResult>> result);
bool assessAdvancedTimiing(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_DetailTimingCheck>> question,
                           std::shared_ptr<std::vector<s_TimingCheckResult>> result);
bool assessLayerWindow(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerWindow>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerSwitch(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerSwitch>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerSource(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerSource>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerRatio(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerRatio>> question,
                      std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerGeneral(Comm::IHttpChannel* channel, std::shared_ptr<std::list<s_LayerIdGeneral>> question,
                        std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerCutout(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_LayerCutout>> question,
                       std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessMOSAICCapaccity(Comm::IHttpChannel* channel,
                           std::shared_ptr<std::list<s_InterfaceMOSAICDetailBody>> question,
                           std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessSourceCapaccity(Comm::IHttpChannel* channel, std::shared_ptr<s_NodeSubcardsMode> question,
                           std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessLayerZoomMode(Comm::IHttpChannel* channel, std::shared_ptr<s_LayerZoomModeBody> question,
                         std::shared_ptr<std::vector<s_LayerAssessResult>> result);
bool assessPresetPlay(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetPlayAssess> question,
                      std::shared_ptr<s_PresetPlayAssessResult> result);

}  // namespace LCD::ProtocolImpl
