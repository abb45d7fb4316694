#pragma once

#include <string>

#include "lcd/memorycache/iuser.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"

namespace LCD::MemoryCacheImpl {

/// The mirror is the token. It is never clean: every request that follows a post logs in anew.
class UserGetter : public ObjectCacheImpl<std::string, std::string, MemoryCache::IUser::RequestCBType> {
public:
    // any thread
    std::string token();
    void clearToken();

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyTokenChanged(const RequestData& request);

    std::string objectTypeName() const override { return "user"; }
    void registerNotifySubCacheCallback() override;

private:
    /// Keeps the token, hands it to the channel and tells the subscribers.
    void storeTokenLocked(std::string token) LCD_REQUIRES(cacheMutex);
    /// To the subscribers alone, also for a request with a callback.
    void notifyTokenChangedLocked(const RequestData& request) LCD_REQUIRES(cacheMutex);
};

}  // namespace LCD::MemoryCacheImpl
