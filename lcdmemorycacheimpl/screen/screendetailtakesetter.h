#pragma once

#include <string>

#include "lcd/memorycache/iscreendetailtake.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class ScreenDetailTakeSetter : public ObjectSamplingImpl<int, MemoryCache::IScreenDetailTake::RequestCBType> {
public:
    // sampling thread
    bool setDetailTake(const RequestData& request);
    bool setDetailCut(const RequestData& request);
    bool setDetailTbar(const RequestData& request);

    std::string objectTypeName() const override { return "screen detail take"; }
    void registerSetSubDataCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
