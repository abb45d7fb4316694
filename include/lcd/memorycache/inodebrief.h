// All nodes that the device knows.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Source: "/zelto/v1/node/list"; no report. It changes when it is asked for anew.
class INodeBrief {
public:
    enum class RequestCBType : std::int32_t {
        NodeListChanged = 1,  ///< `std::shared_ptr<std::vector<s_NodeBrief>>`
    };

    virtual ~INodeBrief() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
