#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/switcheffectgetter.h"
#include "lcdmemorycacheimpl/screen/switcheffectsetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::ISwitchEffect, SwitchEffectGetter, SwitchEffectSetter,
                                     DirtyOnTokenAndData, RedeliverOnFailure>;

class SwitchEffect final : public ComponentShell<MemoryCache::ISwitchEffect, SwitchEffectGetter, SwitchEffectSetter,
                                                 DirtyOnTokenAndData, RedeliverOnFailure> {
public:
    SwitchEffect();
    ~SwitchEffect() override;

    void setSwitchEffectAndTime(std::pair<int, double> effectAndTime) override { effectAndTime_ = effectAndTime; }

private:
    std::pair<int, double> effectAndTime_{};
};

}  // namespace LCD::MemoryCacheImpl
