// The panel's session with the device.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Logs in with the built-in account and keeps the token. The platform's lookup name is "lcdMemoryCacheUser".
class IUser {
public:
    enum class RequestCBType : std::int32_t {
        TokenChanged = 1,  ///< `std::shared_ptr<std::string>`, the token; empty after a failed login
    };

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not
    /// synchronised. The first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;

    virtual ~IUser() = default;

    /// Logs in, in the reload thread; the token is delivered to all subscribers, twice. Any thread.
    virtual void asyncLogin() = 0;
    /// The current token, empty when logged out. Any thread, but not from a callback of any component.
    virtual std::string token() = 0;
    /// Forgets the token, here and in the channel, tells the subscribers in the caller's thread and marks all
    /// mirrors stale. Any thread, but not from a callback of any component.
    virtual void clearToken() = 0;
};

}  // namespace LCD::MemoryCache
