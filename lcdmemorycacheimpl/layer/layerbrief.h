#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/layer/layerbriefgetter.h"

namespace LCD::MemoryCacheImpl {

using DirtyOnLayers =
    DirtyOn<MemoryCache::constants::MSG_TOKEN_CLEARED, MemoryCache::constants::MSG_DEVICE_DATA_REPLACED,
            MemoryCache::constants::MSG_LAYERS_INVALID>;

extern template class ComponentShell<MemoryCache::ILayerBrief, LayerBriefGetter, NoSetter, DirtyOnLayers>;

class LayerBrief final : public ComponentShell<MemoryCache::ILayerBrief, LayerBriefGetter, NoSetter, DirtyOnLayers> {
public:
    LayerBrief();
    ~LayerBrief() override;

    void setSelectedLayerType(int type) override { getter->setSelectedLayerType(type); }
    int selectedLayerType() const override { return getter->selectedLayerType(); }
    void setSelectedLayer(const ProtocolImpl::s_LayerUniqueId& id) override { getter->setSelectedLayer(id); }
    ProtocolImpl::s_LayerUniqueId selectedLayerId() const override { return getter->selectedLayerId(); }
    void asyncGetSubData(const std::string& name, RequestCBType type, const Delivery& callback, int argument) override {
        getter->notifyCacheChangedWithLamda(name, type, callback, argument);
    }
    void setMVRSelectedLayerId(int layerId) override { getter->setMVRSelectedLayerId(layerId); }
    int MVRSelectedLayerId() override { return getter->MVRSelectedLayerId(); }
};

}  // namespace LCD::MemoryCacheImpl
