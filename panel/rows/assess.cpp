#include <list>
#include <vector>

#include "lcd/memorycache/iassess.h"
#include "lcdprotocolimpl/assess/assess.h"
#include "lcdprotocolimpl/interface/mosaic.h"
#include "lcdprotocolimpl/layer/layer.h"
#include "lcdprotocolimpl/layer/layerdetail.h"
#include "lcdprotocolimpl/node/subcard.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;

namespace {

template <class Question, class Verdict = std::vector<s_LayerAssessResult>, class CB>
Kind verdict(const char* name, CB value) {
    return askedWith<Question>(delivers<Verdict>(name, value, "the verdict on what would come of a change"));
}

}  // namespace

std::vector<Component> assessRows() {
    using CB = IAssess::RequestCBType;
    using Timings = std::vector<s_TimingCheckResult>;
    return {component<IAssess>(
        "Assess", "lcdMemoryCacheAssess",
        {verdict<std::vector<s_ThumbTimingCheck>, Timings>("ThumbTiming", CB::ThumbTiming),
         verdict<std::vector<s_DetailTimingCheck>, Timings>("AdvancedTiming", CB::AdvancedTiming),
         verdict<std::list<s_LayerWindow>>("LayerWindow", CB::LayerWindow),
         verdict<std::list<s_LayerSwitch>>("LayerSwitch", CB::LayerSwitch),
         verdict<std::list<s_LayerSource>>("LayerSource", CB::LayerSource),
         verdict<std::list<s_LayerRatio>>("LayerAspectRatio", CB::LayerAspectRatio),
         verdict<std::list<s_LayerIdGeneral>>("LayerGeneral", CB::LayerGeneral),
         verdict<std::vector<s_LayerCutout>>("LayerCutout", CB::LayerCutout),
         verdict<std::list<s_InterfaceMOSAICDetailBody>>("InputMOSAICCapacity", CB::InputMOSAICCapacity),
         verdict<s_NodeSubcardsMode>("InputSourceCapacity", CB::InputSourceCapacity),
         verdict<s_LayerZoomModeBody>("LayerZoomMode", CB::LayerZoomMode),
         verdict<s_PresetPlayAssess, s_PresetPlayAssessResult>("PresetPlay", CB::PresetPlay)})};
}

}  // namespace panel
