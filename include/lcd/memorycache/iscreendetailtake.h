// Take, cut and T-bar of named screens.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/screen/tbar", reports 0x71302, 0x71303, 0x71304. Takes and cuts are told in the receiver's
/// thread, and make the layer mirrors stale.
class IScreenDetailTake {
public:
    enum class RequestCBType : std::int32_t {
        ScreenDetailTakeSet = 1,  ///< to set: `std::shared_ptr<std::vector<s_ScreenDetailTake>>`; reported:
                                  ///< `std::shared_ptr<s_TakeState>`
        ScreenDetailCutSet = 2,   ///< `std::shared_ptr<std::vector<s_ScreenDetailDirection>>`, set and reported
        ScreenDetailTbarSet = 3,  ///< `std::shared_ptr<std::vector<s_ScreenDetailTbar>>`, delivered and set; reports
                                  ///< deliver the end of a move alone
    };

    virtual ~IScreenDetailTake() = default;

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
