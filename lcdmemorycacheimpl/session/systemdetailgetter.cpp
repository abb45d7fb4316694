#include "lcdmemorycacheimpl/session/systemdetailgetter.h"

#include "lcdprotocolimpl/screen/followrequests.h"
#include "lcdprotocolimpl/system/systemdetailrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ISystemDetail::RequestCBType;
using ProtocolImpl::s_ScreenFollow;
using ProtocolImpl::s_SystemDetail;

namespace {

/// A type that is neither changes nothing; the subscribers are told all the same.
void placeFollow(s_SystemDetail& cache, const s_ScreenFollow& report) {
    if (report.type == 1) {
        cache.ftbAudioFollow = report.enable;
    } else if (report.type == 2) {
        cache.freezeAudioFollow = report.enable;
    }
}

}  // namespace

void SystemDetailGetter::registerReportDecodeCallback() { bindReport(0x7115e, &SystemDetailGetter::decodeFollowed); }

void SystemDetailGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::SystemDetailChanged, &SystemDetailGetter::notifySystemDetailChanged);
}

void SystemDetailGetter::reloadCache(const RequestData& /*request*/) {
    fetchCache(&ProtocolImpl::getSystemDetail, "getSystemDetail() return false.");
}

bool SystemDetailGetter::decodeFollowed(const std::string& body, const CommChannel::AutoReportSource& /*source*/) {
    return mergeReport(body, &ProtocolImpl::decodeScreenFTBFRZFollow, &placeFollow, CB::SystemDetailChanged);
}

void SystemDetailGetter::notifySystemDetailChanged(const RequestData& request) { deliverCache(request); }

}  // namespace LCD::MemoryCacheImpl
