// Whether programme and preview swap after a take.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/screen/global/swap", report 0x71201.
class ISwitchMode {
public:
    enum class RequestCBType : std::int32_t {
        SwitchModeChanged = 1,  ///< `std::shared_ptr<s_SwitchMode>`, delivered and set
    };

    virtual ~ISwitchMode() = default;

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
};

}  // namespace LCD::MemoryCache
