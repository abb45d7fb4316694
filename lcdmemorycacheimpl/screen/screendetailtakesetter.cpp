#include "lcdmemorycacheimpl/screen/screendetailtakesetter.h"

#include "lcdprotocolimpl/screen/takerequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IScreenDetailTake::RequestCBType;

void ScreenDetailTakeSetter::registerSetSubDataCallback() {
    bindHandler(CB::ScreenDetailTakeSet, &ScreenDetailTakeSetter::setDetailTake);
    bindHandler(CB::ScreenDetailCutSet, &ScreenDetailTakeSetter::setDetailCut);
    bindHandler(CB::ScreenDetailTbarSet, &ScreenDetailTakeSetter::setDetailTbar);
}

bool ScreenDetailTakeSetter::setDetailTake(const RequestData& request) {
    return sendRecord(request, "s_ScreenDetailTakeArray", &ProtocolImpl::setScreenDetailTake);
}

bool ScreenDetailTakeSetter::setDetailCut(const RequestData& request) {
    return sendRecord(request, "s_ScreenDetailDirectionArray", &ProtocolImpl::setScreenDetailCut);
}

bool ScreenDetailTakeSetter::setDetailTbar(const RequestData& request) {
    return sendRecord(request, "s_ScreenDetailTbarArray", &ProtocolImpl::setScreenDetailTbar);
}

}  // namespace LCD::MemoryCacheImpl
