#pragma once

#include <string>

#include "lcd/memorycache/iscreentake.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class ScreenTakeSetter : public ObjectSamplingImpl<int, MemoryCache::IScreenTake::RequestCBType> {
public:
    // sampling thread
    bool setTake(const RequestData& request);
    bool setCut(const RequestData& request);

    std::string objectTypeName() const override { return "screen take"; }
    void registerSetSubDataCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
