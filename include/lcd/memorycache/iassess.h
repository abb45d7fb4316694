// Questions to the device before a change is made.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Mirrors nothing: each question goes to the device, one after the other, and the verdict is delivered. A question
/// that can't be sent is answered by an empty verdict. A question of the wrong type is logged and answered by the last
/// verdict of its kind, if there is one.
class IAssess {
public:
    enum class RequestCBType : std::int32_t {
        ThumbTiming = 1,           ///< `std::vector<s_ThumbTimingCheck>` -> `std::vector<s_TimingCheckResult>`
        AdvancedTiming = 2,        ///< `std::vector<s_DetailTimingCheck>` -> `std::vector<s_TimingCheckResult>`
        LayerWindow = 3,           ///< `std::list<s_LayerWindow>` -> `std::vector<s_LayerAssessResult>`
        LayerSwitch = 4,           ///< `std::list<s_LayerSwitch>` -> as before
        LayerSource = 5,           ///< `std::list<s_LayerSource>`
        LayerAspectRatio = 6,      ///< `std::list<s_LayerRatio>`
        LayerGeneral = 7,          ///< `std::list<s_LayerIdGeneral>`
        LayerCutout = 8,           ///< `std::vector<s_LayerCutout>`
        InputMOSAICCapacity = 9,   ///< `std::list<s_InterfaceMOSAICDetailBody>`
        InputSourceCapacity = 10,  ///< `s_NodeSubcardsMode`
        LayerZoomMode = 11,        ///< `s_LayerZoomModeBody`
        PresetPlay = 12,           ///< `s_PresetPlayAssess` -> `s_PresetPlayAssessResult`
    };

    virtual ~IAssess() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks a question: `key` holds a `std::shared_ptr` to it. `callback` is given a `std::shared_ptr` to the verdict.
    /// Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type, std::any key,
                                 const std::function<void(const std::any&)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
