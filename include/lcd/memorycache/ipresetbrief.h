// Presets: stored arrangements of the screens.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/preset/list-detail", reports 0xa2100, 0xa2101, 0xa2105, 0xa2106, 0xa2203.
class IPresetBrief {
public:
    enum class RequestCBType : std::int32_t {
        PresetDetailChanged = 1,  ///< `std::shared_ptr<s_PresetDetailPage>`, the mirror
        PresetCreateChanged =
            2,  ///< `std::shared_ptr<s_PresetDetailPage>`: what was last created; to set: `s_PresetCreate`
        PresetApplyChanged = 3,    ///< `std::shared_ptr<std::pair<std::string, s_PresetDetail>>`: requester and preset;
                                   ///< to set: `s_PresetApply`
        PresetDeleteChanged = 4,   ///< `std::shared_ptr<std::vector<s_PresetId>>`, delivered and set
        PresetGeneralChanged = 5,  ///< `std::shared_ptr<std::vector<s_PresetGeneral>>`; to set: `s_PresetGeneral`
    };

    virtual ~IPresetBrief() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Queues a change. `callback`, which may be empty, hears whether the device took it, in the sampling thread; it
    /// never fires for a request that a later one of the same type replaced. Any thread.
    virtual void asyncSetSubData(const std::string& name, RequestCBType type, const std::any& data,
                                 const std::function<void(bool)>& callback) = 0;
    /// Passes a key's value to the callback that was last set, if there is one. Changes nothing. One thread.
    virtual void setKeyValue(int value) = 0;
    virtual void setKeyValueChangedCB(const std::function<void(int)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
