#include "lcdmemorycacheimpl/screen/transitionpreviewsetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ITransitionPreview::RequestCBType;

void TransitionPreviewSetter::registerSetSubDataCallback() {
    bindHandler(CB::TransitionEnableChanged, &TransitionPreviewSetter::setTransitionPreview);
}

bool TransitionPreviewSetter::setTransitionPreview(const RequestData& request) {
    return sendRecord(request, "s_TransitionPreview", &ProtocolImpl::setTransitionPreview);
}

}  // namespace LCD::MemoryCacheImpl
