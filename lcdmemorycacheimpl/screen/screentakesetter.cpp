#include "lcdmemorycacheimpl/screen/screentakesetter.h"

#include "lcdprotocolimpl/screen/takerequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IScreenTake::RequestCBType;

void ScreenTakeSetter::registerSetSubDataCallback() {
    bindHandler(CB::ScreenTakeSet, &ScreenTakeSetter::setTake);
    bindHandler(CB::ScreenCutSet, &ScreenTakeSetter::setCut);
}

bool ScreenTakeSetter::setTake(const RequestData& request) {
    return sendRecord(request, "s_Take", &ProtocolImpl::setScreenTake);
}

bool ScreenTakeSetter::setCut(const RequestData& request) {
    return sendRecord(request, "s_Direction", &ProtocolImpl::setScreenCut);
}

}  // namespace LCD::MemoryCacheImpl
