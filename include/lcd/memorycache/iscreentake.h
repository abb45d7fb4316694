// Take, cut and T-bar of the selected screens.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/screen/selected/tbar", reports 0x71202, 0x71203, 0x71204. A take is told in the receiver's
/// thread.
class IScreenTake {
public:
    enum class RequestCBType : std::int32_t {
        ScreenTakeSet = 1,      ///< to set: `std::shared_ptr<s_Take>`; reported: `std::shared_ptr<s_TakeState>`
        ScreenCutSet = 2,       ///< to set: `std::shared_ptr<s_Direction>`; never delivered
        ScreenTbarChanged = 3,  ///< `std::shared_ptr<s_Tbar>`, whose percentage changes at reloads alone
    };

    virtual ~IScreenTake() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
    /// Queues a change. `callback`, which may be empty, hears whether the device took it, in the sampling thread; it
    /// never fires for a request that a later one of the same type replaced. Any thread.
    virtual void asyncSetSubData(const std::string& name, RequestCBType type, const std::any& data,
                                 const std::function<void(bool)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
