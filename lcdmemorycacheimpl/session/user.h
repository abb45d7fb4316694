#pragma once

#include "ktp/imessagecenter.h"
#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/session/usergetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IUser, UserGetter, NoSetter, DirtyOn<>>;

class User final : public ComponentShell<MemoryCache::IUser, UserGetter, NoSetter, DirtyOn<>> {
public:
    User();
    ~User() override;

    void asyncLogin() override;
    std::string token() override { return getter->token(); }
    void clearToken() override;

    /// Logs in anew when the device's data was replaced.
    int handleMessage(const ktp::IMessage* message) override;

private:
    ktp::IMessageCenter* messageCenter;
};

}  // namespace LCD::MemoryCacheImpl
