#include "lcdmemorycacheimpl/screen/screendetailtakegetter.h"

#include <algorithm>

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/platformmessage.h"
#include "lcdprotocolimpl/screen/takerequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IScreenDetailTake::RequestCBType;
using namespace ProtocolImpl;

void ScreenDetailTakeGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    messageCenter = ktp::api::get().find<ktp::IMessageCenter>(ktp::kMessageCenterName);
}

void ScreenDetailTakeGetter::registerReportDecodeCallback() {
    bindReport(0x71302, &ScreenDetailTakeGetter::decodeScreenDetailTake);
    bindReport(0x71304, &ScreenDetailTakeGetter::decodeScreenDetailCut);
    bindReport(0x71303, &ScreenDetailTakeGetter::decodeScreenDetailTbar);
    bindReport(0x50104, &ScreenDetailTakeGetter::decodeWorkModeChanged);
}

void ScreenDetailTakeGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::ScreenDetailTbarSet, &ScreenDetailTakeGetter::notifyScreenDetailTbarChanged);
}

void ScreenDetailTakeGetter::reloadCache(const RequestData& /*request*/) { fetchCache(&getScreenDetailTbar); }

void ScreenDetailTakeGetter::notifyScreenDetailTbarChanged(const RequestData& request) { deliverCache(request); }

void ScreenDetailTakeGetter::notifyScreenDetailTakeChanged(const RequestData& request) { deliverData(request); }

void ScreenDetailTakeGetter::reReadLayerData() {
    postToComponents(messageCenter, MemoryCache::constants::MSG_LAYERS_INVALID);
}

bool ScreenDetailTakeGetter::decodeScreenDetailTake(const std::string& body) {
    const auto state = std::make_shared<s_TakeState>();
    if (!ProtocolImpl::decodeScreenDetailTake(body, *state)) {
        return false;
    }
    if (state->status == 1) {
        reReadLayerData();
    }
    notifyScreenDetailTakeChanged({{}, CB::ScreenDetailTakeSet, -1, state, {}});
    return true;
}

bool ScreenDetailTakeGetter::decodeScreenDetailCut(const std::string& body) {
    const auto cuts = std::make_shared<std::vector<s_ScreenDetailDirection>>();
    if (!ProtocolImpl::decodeScreenDetailCut(body, *cuts)) {
        return false;
    }
    reReadLayerData();
    notifyScreenDetailTakeChanged({{}, CB::ScreenDetailCutSet, -1, cuts, {}});
    return true;
}

bool ScreenDetailTakeGetter::decodeScreenDetailTbar(const std::string& body) {
    constexpr int kMoveEnded = -1;
    std::vector<s_ScreenDetailTbar> report;
    if (!ProtocolImpl::decodeScreenDetailTbar(body, report)) {
        return false;
    }
    LockGuard lock(cacheMutex);
    for (const s_ScreenDetailTbar& entry : report) {
        const auto found = std::find_if(cache.begin(), cache.end(), [&entry](const s_ScreenDetailTbar& each) {
            return each.screenId == entry.screenId;
        });
        if (found != cache.end()) {
            *found = entry;
        } else {
            cache.push_back(entry);
        }
    }
    if (!report.empty() && report.front().percent == kMoveEnded) {
        reReadLayerData();
        notifyCacheChanged({}, CB::ScreenDetailTbarSet);
    }
    return true;
}

bool ScreenDetailTakeGetter::decodeWorkModeChanged(const std::string& /*body*/) {
    cacheDirty = true;
    return true;
}

}  // namespace LCD::MemoryCacheImpl
