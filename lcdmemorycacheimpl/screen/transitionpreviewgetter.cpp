#include "lcdmemorycacheimpl/screen/transitionpreviewgetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ITransitionPreview::RequestCBType;
using ProtocolImpl::s_TransitionPreview;

void TransitionPreviewGetter::registerReportDecodeCallback() {
    bindReport(0x71207, &TransitionPreviewGetter::decodeTransitionPreview);
}

void TransitionPreviewGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::TransitionEnableChanged, &TransitionPreviewGetter::notifyTransitionEnableChanged);
}

void TransitionPreviewGetter::reloadCache(const RequestData& /*request*/) {
    fetchCache(&ProtocolImpl::getTransitionPreview);
}

bool TransitionPreviewGetter::decodeTransitionPreview(const std::string& body) {
    return mergeReport(body, &ProtocolImpl::decodeTransitionPreview, copyMember(&s_TransitionPreview::enable),
                       CB::TransitionEnableChanged, AfterReport::dirtyUnlessDecoded);
}

void TransitionPreviewGetter::notifyTransitionEnableChanged(const RequestData& request) { deliverCache(request); }

}  // namespace LCD::MemoryCacheImpl
