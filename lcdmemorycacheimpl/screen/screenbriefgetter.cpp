#include "lcdmemorycacheimpl/screen/screenbriefgetter.h"

#include <algorithm>

#include "lcd/memorycache/constants.h"
#include "lcdprotocolimpl/screen/screenrequests.h"

namespace LCD::MemoryCacheImpl {

using namespace ProtocolImpl;
using CB = MemoryCache::IScreenBrief::RequestCBType;

namespace {

bool isRegular(const s_ScreenBrief& screen) { return screen.screenIdObj.type == 2 || screen.screenIdObj.type == 32; }

}  // namespace

void ScreenBriefGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    config = ktp::api::get().find<Config::ILcdConfig>(Config::OBJ_CONFIG_NAME);
    node = ktp::api::get().find<MemoryCache::INode>(MemoryCache::constants::OBJ_MEMORYCACHE_NODE_NAME);
}

void ScreenBriefGetter::registerReportDecodeCallback() {
    bindReport(0x50104, &ScreenBriefGetter::decodeWorkModeChanged);
}

void ScreenBriefGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::RegularScreenSelected, &ScreenBriefGetter::notifyRegularScreenSelectedChanged);
    bindHandler(CB::ActiveScreenTypeChanged, &ScreenBriefGetter::notifyActiveScreenTypeChanged);
    bindHandler(CB::ActiveScreenSelected, &ScreenBriefGetter::notifyActiveScreenSelectChanged);
    bindHandler(CB::ActiveScreenPgmStatusChanged, &ScreenBriefGetter::notifyActiveScreenPgmStatusChanged);
    bindHandler(CB::ActiveScreenInfoChanged, &ScreenBriefGetter::notifyActiveScreenInfoChanged);
}

// ---------------------------------------------------------------------------------- any thread

void ScreenBriefGetter::setSelectedRegularScreen(int screenId) {
    LockGuard lock(cacheMutex);
    if (screenId != selectedRegularScreenId) {
        selectedRegularScreenId = screenId;
        notifyCacheChanged({}, CB::RegularScreenSelected);
    }
}

int ScreenBriefGetter::selectedScreen() {
    LockGuard lock(cacheMutex);
    return selectedRegularScreenId;
}

void ScreenBriefGetter::setActiveScreenPgmStatus(const PgmStatus& value) {
    bool tells = false;
    {
        LockGuard lock(cacheMutex);
        tells = storePgmStatusLocked(value);
    }
    if (tells) {
        notifyCacheChanged({}, CB::ActiveScreenPgmStatusChanged);
        notifyCacheChanged({}, CB::ActiveScreenInfoChanged);
    }
}

bool ScreenBriefGetter::storePgmStatusLocked(const PgmStatus& value) {
    const auto found = std::find_if(pgmStatusList.begin(), pgmStatusList.end(), [&value](const PgmStatus& each) {
        return each.screenId == value.screenId && each.mode == value.mode;
    });
    if (found != pgmStatusList.end()) {
        *found = value;
    } else {
        pgmStatusList.push_back(value);
    }
    if (selectedRegularScreenId == -1) {
        KT::log(spdlog::level::info, KT::LogSite::here(__builtin_FILE(), "setActiveScreenPgmStatus"),
                "setActiveScreenPgmStatus skip notify, first init");
        return false;
    }
    return true;
}

int ScreenBriefGetter::activeScreenPgmStatus(int screenId, int mode) {
    LockGuard lock(cacheMutex);
    return pgmStatusLocked(screenId, mode);
}

int ScreenBriefGetter::pgmStatusLocked(int screenId, int mode) const {
    for (const PgmStatus& each : pgmStatusList) {
        if (each.screenId == screenId && each.mode == mode) {
            return each.status;
        }
    }
    return -1;
}

// ------------------------------------------------------------------------------- reload thread

void ScreenBriefGetter::reloadCache(const RequestData& /*request*/) {
    LockGuard lock(cacheMutex);
    cacheDirty = !getScreenList(httpChannel, cache);
    if (cache.empty() || selectedRegularScreenId != -1) {
        return;
    }
    initPgmEditStatusLocked();
    if (const auto first = std::find_if(cache.begin(), cache.end(), &isRegular); first != cache.end()) {
        selectedRegularScreenId = first->screenId;
    }
    if (activeScreenId == -1 || activeScreenId == -2) {
        activeScreenId = selectedRegularScreenId;
    }
}

void ScreenBriefGetter::initPgmEditStatusLocked() {
    const std::map<int, int> defaults = config->defaultProgramEditStatus();
    for (const s_ScreenBrief& screen : cache) {
        for (const auto& [mode, status] : defaults) {
            storePgmStatusLocked({screen.screenId, screen.screenIdObj, mode, status});
        }
    }
}

/// The last entry of that id; a default one when there is none.
s_ScreenBrief ScreenBriefGetter::activeScreenLocked() const {
    const auto last = std::find_if(cache.rbegin(), cache.rend(), [id = activeScreenId](const s_ScreenBrief& screen) {
        return screen.screenId == id;
    });
    return last == cache.rend() ? s_ScreenBrief() : *last;
}

void ScreenBriefGetter::notifyRegularScreenSelectedChanged(const RequestData& request) {
    deliverField(&ScreenBriefGetter::selectedRegularScreenId, request);
}

void ScreenBriefGetter::notifyActiveScreenTypeChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(activeScreenLocked().screenIdObj.type, request);
}

void ScreenBriefGetter::notifyActiveScreenSelectChanged(const RequestData& request) {
    deliverField(&ScreenBriefGetter::activeScreenId, request);
}

void ScreenBriefGetter::notifyActiveScreenPgmStatusChanged(const RequestData& request) {
    node->asyncGetSubData(requesterName, MemoryCache::INode::RequestCBType::NodeModeChanged,
                          [this, request](const std::any& payload) {
                              const auto* const mode = std::any_cast<std::shared_ptr<s_NodeMode>>(&payload);
                              if (mode != nullptr && *mode != nullptr) {
                                  deliverPgmStatus((*mode)->mode.workMode, request);
                              }
                          });
}

void ScreenBriefGetter::deliverPgmStatus(int mode, const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(std::pair<int, int>(activeScreenId, pgmStatusLocked(activeScreenId, mode)), request);
}

void ScreenBriefGetter::notifyActiveScreenInfoChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(activeScreenLocked(), request);
}

void ScreenBriefGetter::notifyScreensChanged(const RequestData& request) { deliverCache(request); }

// ----------------------------------------------------------------------------- receiver thread

bool ScreenBriefGetter::decodeWorkModeChanged(const std::string& /*body*/) {
    LockGuard lock(cacheMutex);
    cache.clear();
    cacheDirty = true;
    selectedRegularScreenId = -1;
    activeScreenId = -1;
    pgmStatusList.clear();
    return true;
}

}  // namespace LCD::MemoryCacheImpl
