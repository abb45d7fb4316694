#pragma once

#include <string>

#include "lcd/memorycache/itransitionpreview.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/switchsettings.h"

namespace LCD::MemoryCacheImpl {

class TransitionPreviewGetter
    : public ObjectCacheImpl<ProtocolImpl::s_TransitionPreview, int, MemoryCache::ITransitionPreview::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyTransitionEnableChanged(const RequestData& request);

    // receiver thread
    bool decodeTransitionPreview(const std::string& body);

    std::string objectTypeName() const override { return "transition preview"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
