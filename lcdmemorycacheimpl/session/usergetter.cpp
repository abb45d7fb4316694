#include "lcdmemorycacheimpl/session/usergetter.h"

#include <utility>

#include "lcdprotocolimpl/system/authrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IUser::RequestCBType;

void UserGetter::registerNotifySubCacheCallback() { bindHandler(CB::TokenChanged, &UserGetter::notifyTokenChanged); }

std::string UserGetter::token() {
    LockGuard lock(cacheMutex);
    return cache;
}

void UserGetter::clearToken() {
    LockGuard lock(cacheMutex);
    storeTokenLocked({});
}

void UserGetter::reloadCache(const RequestData& /*request*/) {
    KT_INFO("login start");
    std::string token = ProtocolImpl::login(httpChannel, ProtocolImpl::DEFUALT_USERNAME, ProtocolImpl::DEFAULT_PWD);
    KT_INFO("login finished. token:{0}", token);
    LockGuard lock(cacheMutex);
    storeTokenLocked(std::move(token));
}

void UserGetter::storeTokenLocked(std::string token) {
    cache = std::move(token);
    httpChannel->setToken(cache);
    notifyTokenChangedLocked({{}, CB::TokenChanged, {}, {}, {}});
}

void UserGetter::notifyTokenChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifyTokenChangedLocked(request);
}

void UserGetter::notifyTokenChangedLocked(const RequestData& request) {
    notifySubCacheChanged(cache, RequestData{request.name, request.type, {}, {}, {}});
}

}  // namespace LCD::MemoryCacheImpl
