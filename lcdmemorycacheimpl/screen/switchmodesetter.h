#pragma once

#include <string>

#include "lcd/memorycache/iswitchmode.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class SwitchModeSetter : public ObjectSamplingImpl<int, MemoryCache::ISwitchMode::RequestCBType> {
public:
    // sampling thread
    bool setSwitchMode(const RequestData& request);

    std::string objectTypeName() const override { return "switch mode"; }
    void registerSetSubDataCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
