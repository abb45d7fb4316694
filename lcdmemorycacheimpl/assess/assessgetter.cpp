#include "lcdmemorycacheimpl/assess/assessgetter.h"

#include "lcdmemorycacheimpl/engine/typename.h"
#include "lcdprotocolimpl/assess/assessrequests.h"

namespace LCD::MemoryCacheImpl {

using namespace ProtocolImpl;

void AssessGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::ThumbTiming, &AssessGetter::notifyThumbTiming);
    bindHandler(CB::AdvancedTiming, &AssessGetter::notifyAdvancedTiming);
    bindHandler(CB::LayerWindow, &AssessGetter::notifyLayerWindow);
    bindHandler(CB::LayerSwitch, &AssessGetter::notifyLayerSwitch);
    bindHandler(CB::LayerSource, &AssessGetter::notifyLayerSource);
    bindHandler(CB::LayerAspectRatio, &AssessGetter::notifyLayerAspectRatio);
    bindHandler(CB::LayerGeneral, &AssessGetter::notifyLayerGeneral);
    bindHandler(CB::InputMOSAICCapacity, &AssessGetter::notifyInpurMOSAICCapacity);
    bindHandler(CB::InputSourceCapacity, &AssessGetter::notifyInputSourceCapacity);
    bindHandler(CB::LayerZoomMode, &AssessGetter::notifylayerZoomMode);
    bindHandler(CB::LayerCutout, &AssessGetter::notifyLayerCutout);
    bindHandler(CB::PresetPlay, &AssessGetter::notifyPresetPlay);
}

void AssessGetter::notifyCacheChanged(const std::string& name, CB type, const std::any& key,
                                      const std::function<void(const std::any&)>& callback) {
    notifyCacheChangedWithLambda(name, type, callback, key);
}

void AssessGetter::checkCacheDirtied(const RequestData& /*request*/) { wakeFlag = true; }

void AssessGetter::reloadCache(const RequestData& request) {
    LockGuard lock(cacheMutex);
    const std::any key = request.key;
    const auto site = KT::LogSite::here();
    switch (request.type) {
        case CB::ThumbTiming:
            return ask(key, "s_ThumbTimigCheck", &assessThumbTimiing, thumbTiming, site);
        case CB::AdvancedTiming:
            return ask(key, "s_DetailTimingCheckArry", &assessAdvancedTimiing, advancedTiming, site);
        case CB::LayerWindow:
            return ask(key, "s_LayerWindowArray", &assessLayerWindow, layerWindow, site);
        case CB::LayerSwitch:
            return ask(key, "s_LayerSwitchArray", &assessLayerSwitch, layerSwitch, site);
        case CB::LayerSource:
            return ask(key, "s_LayerSourceArray", &assessLayerSource, layerSource, site);
        case CB::LayerAspectRatio:
            return ask(key, "s_LayerRatioArray", &assessLayerRatio, layerAspectRatio, site);
        case CB::LayerGeneral:
            return ask(key, "s_LayerIdGeneralArry", &assessLayerGeneral, layerGeneral, site);
        case CB::LayerCutout:
            return ask(key, "s_LayerCutout", &assessLayerCutout, layerCutout, site);
        case CB::InputMOSAICCapacity:
            return ask(key, "s_InterfaceMOSAICDetailArray", &assessMOSAICCapaccity, inputMOSAICCapacity, site);
        case CB::InputSourceCapacity:
            return ask(key, "s_NodeSubcardsMode", &assessSourceCapaccity, inputSourceCapacity, site);
        case CB::LayerZoomMode:
            return ask(key, "s_LayerZoomModeBody", &assessLayerZoomMode, layerZoomMode, site);
        case CB::PresetPlay:
            return ask(key, "s_PresetPlayAssess", &assessPresetPlay, presetPlay, site);
    }
    KT_WARN("reloadCache need type is invalid, type :{0}", static_cast<std::int32_t>(request.type));
}

template <class Question, class Result>
void AssessGetter::ask(const std::any& key, const char* typeName,
                       bool (*assess)(Comm::IHttpChannel*, std::shared_ptr<Question>, std::shared_ptr<Result>),
                       std::shared_ptr<Result>& verdict, KT::LogSite site) {
    const auto* const question = std::any_cast<std::shared_ptr<Question>>(&key);
    if (question == nullptr) {
        KT::log(spdlog::level::warn, site, "reloadCache need type is std::shared_ptr<{1}> but has{0}",
                heldTypeName(key), typeName);
        return;
    }
    auto result = std::make_shared<Result>();
    if (*question == nullptr) {
        KT::log(spdlog::level::warn, site, "val_ is null");
    } else {
        assess(httpChannel, *question, result);  // a question that fails is answered by the empty result
    }
    verdict.swap(result);
    cacheDirty = true;
}

template <class Result>
void AssessGetter::deliverVerdict(const std::shared_ptr<Result>& verdict, const RequestData& request) {
    LockGuard lock(cacheMutex);
    if (verdict != nullptr) {
        deliver(verdict, request);
    }
}

void AssessGetter::notifyPresetPlay(const RequestData& request) {
    LockGuard lock(cacheMutex);
    if (presetPlay != nullptr) {
        notifySubCacheChanged(*presetPlay, request);
    }
}

}  // namespace LCD::MemoryCacheImpl
