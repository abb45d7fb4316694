// Whether a transition is shown in preview first.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/screen/global/transition-preview", report 0x71207.
class ITransitionPreview {
public:
    enum class RequestCBType : std::int32_t {
        TransitionEnableChanged = 1,  ///< `std::shared_ptr<s_TransitionPreview>`, delivered and set
    };

    virtual ~ITransitionPreview() = default;

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
