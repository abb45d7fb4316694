#include "lcdmemorycacheimpl/screen/screentakegetter.h"

#include "lcdprotocolimpl/screen/takerequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IScreenTake::RequestCBType;
using namespace ProtocolImpl;

void ScreenTakeGetter::registerReportDecodeCallback() {
    bindReport(0x71203, &ScreenTakeGetter::decodeScreenTake);
    bindReport(0x71204, &ScreenTakeGetter::decodeScreenCut);
    bindReport(0x71202, &ScreenTakeGetter::decodeScreenTbar);
    bindReport(0x50104, &ScreenTakeGetter::decodeWorkModeChanged);
}

void ScreenTakeGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::ScreenTakeSet, &ScreenTakeGetter::notifyScreenTakeChanged);
    bindHandler(CB::ScreenTbarChanged, &ScreenTakeGetter::notifyScreenTbarChanged);
}

/// Of what is fetched only the percentage is kept.
void ScreenTakeGetter::reloadCache(const RequestData& /*request*/) {
    LockGuard lock(cacheMutex);
    s_Tbar fetched;
    const bool ok = getScreenTbar(httpChannel, fetched);
    if (ok) {
        cache.percent = fetched.percent;
    }
    cacheDirty = !ok;
}

void ScreenTakeGetter::notifyScreenTbarChanged(const RequestData& request) { deliverCache(request); }

void ScreenTakeGetter::notifyScreenTakeChanged(const RequestData& request) { deliverData(request); }

bool ScreenTakeGetter::decodeScreenTake(const std::string& body) {
    const auto state = std::make_shared<s_TakeState>();
    if (!ProtocolImpl::decodeScreenTake(body, *state)) {
        return false;
    }
    notifyScreenTakeChanged({{}, CB::ScreenTakeSet, -1, state, {}});
    return true;
}

// Cuts and T-bar moves are told of, but what is reported isn't kept: these don't wait for the mirror's lock.

bool ScreenTakeGetter::decodeScreenCut(const std::string& body) {
    s_Direction cut;
    const bool decoded = ProtocolImpl::decodeScreenCut(body, cut);
    if (decoded) {
        notifyCacheChanged({}, CB::ScreenCutSet);
    }
    return decoded;
}

bool ScreenTakeGetter::decodeScreenTbar(const std::string& body) {
    s_Tbar bar;
    const bool decoded = ProtocolImpl::decodeScreenTbar(body, bar);
    if (decoded) {
        notifyCacheChanged({}, CB::ScreenTbarChanged);
    }
    return decoded;
}

bool ScreenTakeGetter::decodeWorkModeChanged(const std::string& /*body*/) {
    cacheDirty = true;
    return true;
}

}  // namespace LCD::MemoryCacheImpl
