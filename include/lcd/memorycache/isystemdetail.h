// Device-wide switches.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Mirror of whether the audio follows a fade to black and a freeze. Source: "/zelto/v1/system/detail", report 0x7115e.
class ISystemDetail {
public:
    enum class RequestCBType : std::int32_t {
        SystemDetailChanged = 1,  ///< `std::shared_ptr<s_SystemDetail>`, the mirror
    };

    virtual ~ISystemDetail() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not
    /// synchronised. The first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to `callback` alone. The key has no meaning. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback, int key) = 0;
    /// No value can be set here: a request ends in a warning and `callback` isn't called.
    virtual void asyncSetSubData(const std::string& name, RequestCBType type, int key, const std::any& data,
                                 const std::function<void(bool)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
