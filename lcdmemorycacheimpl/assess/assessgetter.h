#pragma once

#include <any>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lcd/memorycache/iassess.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/assess/assess.h"

namespace LCD::MemoryCacheImpl {

/// A worker for questions, not a mirror: the key of a request is the whole question, its verdict stands in a member for
/// each kind, and nothing is answered from memory.
class AssessGetter : public ObjectCacheImpl<int, std::any, MemoryCache::IAssess::RequestCBType> {
public:
    using CB = MemoryCache::IAssess::RequestCBType;

    // any thread
    void notifyCacheChanged(const std::string& name, CB type, const std::any& key,
                            const std::function<void(const std::any&)>& callback);

    std::string objectTypeName() const override { return "assess"; }
    void registerNotifySubCacheCallback() override;

    // reload thread
    void notifyCacheChanged(const RequestData& request) override { ObjectCacheImpl::notifyCacheChanged(request); }
    /// Every question goes to the device, also one that waited while another was asked.
    void checkCacheDirtied(const RequestData& request) override;
    void reloadCache(const RequestData& request) override;
    void notifyThumbTiming(const RequestData& request) { deliverVerdict(thumbTiming, request); }
    void notifyAdvancedTiming(const RequestData& request) { deliverVerdict(advancedTiming, request); }
    void notifyLayerWindow(const RequestData& request) { deliverVerdict(layerWindow, request); }
    void notifyLayerSwitch(const RequestData& request) { deliverVerdict(layerSwitch, request); }
    void notifyLayerSource(const RequestData& request) { deliverVerdict(layerSource, request); }
    void notifyLayerAspectRatio(const RequestData& request) { deliverVerdict(layerAspectRatio, request); }
    void notifyLayerGeneral(const RequestData& request) { deliverVerdict(layerGeneral, request); }
    void notifyLayerCutout(const RequestData& request) { deliverVerdict(layerCutout, request); }
    void notifyInpurMOSAICCapacity(const RequestData& request) { deliverVerdict(inputMOSAICCapacity, request); }
    void notifyInputSourceCapacity(const RequestData& request) { deliverVerdict(inputSourceCapacity, request); }
    void notifylayerZoomMode(const RequestData& request) { deliverVerdict(layerZoomMode, request); }
    /// The only one that delivers a copy.
    void notifyPresetPlay(const RequestData& request);

private:
    using TimingVerdict = std::shared_ptr<std::vector<ProtocolImpl::s_TimingCheckResult>>;
    using LayerVerdict = std::shared_ptr<std::vector<ProtocolImpl::s_LayerAssessResult>>;

    template <class Question, class Result>
    void ask(const std::any& key, const char* typeName,
             bool (*assess)(Comm::IHttpChannel*, std::shared_ptr<Question>, std::shared_ptr<Result>),
             std::shared_ptr<Result>& verdict, KT::LogSite site) LCD_REQUIRES(cacheMutex);
    template <class Result>
    void deliverVerdict(const std::shared_ptr<Result>& verdict, const RequestData& request);

    // the last verdict of each kind, guarded by cacheMutex; null before the first
    TimingVerdict thumbTiming;
    TimingVerdict advancedTiming;
    LayerVerdict layerWindow;
    LayerVerdict layerSwitch;
    LayerVerdict layerSource;
    LayerVerdict layerAspectRatio;
    LayerVerdict layerGeneral;
    LayerVerdict layerCutout;
    LayerVerdict inputMOSAICCapacity;
    LayerVerdict inputSourceCapacity;
    LayerVerdict layerZoomMode;
    std::shared_ptr<ProtocolImpl::s_PresetPlayAssessResult> presetPlay;
};

}  // namespace LCD::MemoryCacheImpl
