#include "lcdmemorycacheimpl/session/user.h"

#include "ktp/api.h"
#include "lcdmemorycacheimpl/engine/platformmessage.h"
#include "lcdprotocolimpl/system/authrequests.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IUser, UserGetter, NoSetter, DirtyOn<>>;

namespace constants = MemoryCache::constants;

User::User() : messageCenter(ktp::api::get().find<ktp::IMessageCenter>(ktp::kMessageCenterName)) {}
User::~User() = default;

void User::asyncLogin() { getter->notifyCacheChanged({}, RequestCBType::TokenChanged, ProtocolImpl::DEFUALT_USERNAME); }

void User::clearToken() {
    getter->clearToken();
    postToComponents(messageCenter, constants::MSG_TOKEN_CLEARED);
}

int User::handleMessage(const ktp::IMessage* message) {
    if (message->id() == constants::MSG_DEVICE_DATA_REPLACED) {
        asyncLogin();
    }
    return ComponentShell::handleMessage(message);
}

}  // namespace LCD::MemoryCacheImpl
