// The list of layers and the panel's choice among them.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

#include "lcdprotocolimpl/layer/layer.h"

namespace LCD::MemoryCache {

/// Mirror of the layers as buttons show them, and the panel's selection, which the device doesn't store. A layer is
/// known by its `layerIdObj`; its `layerId` is the number that it bears now, and the selection follows it. Source:
/// "/zelto/v1/layers/list-thumb", reports 0x81102, 0x81103, 0x81109, 0x8110a, 0x8111a, 0x8112f; 0x50104, 0x50404 and
/// 0x62203 make it stale. Every delivery holds a `std::shared_ptr` to what stands at its kind.
class ILayerBrief {
public:
    enum class RequestCBType : std::int32_t {
        LayerSwitchChanged = 1,      ///< `s_LayerData` of the layer whose number is asked for
        LayerSwitchDone = 2,         ///< never delivered
        LayerCreateChanged = 3,      ///< `std::any` that holds the `std::vector<s_LayerBrief>`
        LayerClearChanged = 4,       ///< as LayerCreateChanged
        LayerSelectedUpdated = 5,    ///< `s_LayerUniqueId`: the selection
        LayerTypeSelectChanged = 6,  ///< `int`: the selected layer type
        LayersChanged = 7,  ///< `std::vector<s_LayerBrief>`: the layers whose type has a bit of the mask asked for
        LayerSelectedChanged = 8,  ///< `s_LayerUniqueId`: the selection
        MOSAICChanged = 9,         ///< `int`: the selected layer type
        TypeChanged = 10,  ///< `s_LayerUniqueId` of the layer whose number is asked for; nothing for an unknown one
        MVRLayerSelectedChanged = 11,  ///< `int`: the layer selected on the multi-view page
        LayerTransFollow = 12,         ///< `std::pair<std::string, s_LayerTransitionFollow>`: requester and new value
    };

    virtual ~ILayerBrief() = default;

    /// Which group of layers the panel looks at. Any thread.
    virtual void setSelectedLayerType(int type) = 0;
    /// Any thread. Not from a callback of any component.
    virtual int selectedLayerType() const = 0;
    /// Selects a layer, here alone; the device hears nothing of it. Any thread.
    virtual void setSelectedLayer(const ProtocolImpl::s_LayerUniqueId& id) = 0;
    /// Any thread. Not from a callback of any component.
    virtual ProtocolImpl::s_LayerUniqueId selectedLayerId() const = 0;
    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery to `callback` alone. `argument` is the layer's number or the mask that the kind expects. Any
    /// thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback, int argument) = 0;
    /// The layer selected on the multi-view page. Any thread.
    virtual void setMVRSelectedLayerId(int layerId) = 0;
    /// -1 for none. Any thread. Not from a callback of any component.
    virtual int MVRSelectedLayerId() = 0;
};

}  // namespace LCD::MemoryCache
