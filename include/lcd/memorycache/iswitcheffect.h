// How a take looks.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace LCD::MemoryCache {

/// Mirror of the transition effects. Source: "/zelto/v1/screen/global/switch-effect", reports 0x71205, 0x71209.
class ISwitchEffect {
public:
    enum class RequestCBType : std::int32_t {
        SwitchEffectChanged =
            1,  ///< `std::shared_ptr<s_GetSwitchEffect>`; to set: `std::shared_ptr<s_SetSwitchEffect>`
        ActiveEffectChanged =
            2,  ///< `std::shared_ptr<int>`, the active effect; to set: `std::shared_ptr<s_SetActiveEffect>`
    };

    virtual ~ISwitchEffect() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not
    /// synchronised. The first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
    /// Queues a change. `callback`, which may be empty, hears whether the device took it, in the sampling
    /// thread; it never fires for a request that a later one of the same type replaced. Any thread.
    virtual void asyncSetSubData(const std::string& name, RequestCBType type, const std::any& data,
                                 const std::function<void(bool)>& callback) = 0;
    /// Keeps an effect and its time for the page that shows them. Nothing reads them back. One thread.
    virtual void setSwitchEffectAndTime(std::pair<int, double> effectAndTime) = 0;
};

}  // namespace LCD::MemoryCache
