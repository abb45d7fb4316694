#pragma once

#include <string>

#include "lcd/memorycache/iswitcheffect.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class SwitchEffectSetter : public ObjectSamplingImpl<int, MemoryCache::ISwitchEffect::RequestCBType> {
public:
    // sampling thread
    bool setSwitchEffect(const RequestData& request);
    bool setActiveEffectType(const RequestData& request);

    std::string objectTypeName() const override { return "switch effect"; }
    void registerSetSubDataCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
