#pragma once

#include <string>

#include "lcd/memorycache/itransitionpreview.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class TransitionPreviewSetter : public ObjectSamplingImpl<int, MemoryCache::ITransitionPreview::RequestCBType> {
public:
    // sampling thread
    bool setTransitionPreview(const RequestData& request);

    std::string objectTypeName() const override { return "transition preview"; }
    void registerSetSubDataCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
