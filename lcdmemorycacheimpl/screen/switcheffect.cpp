#include "lcdmemorycacheimpl/screen/switcheffect.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::ISwitchEffect, SwitchEffectGetter, SwitchEffectSetter, DirtyOnTokenAndData,
                              RedeliverOnFailure>;

SwitchEffect::SwitchEffect() = default;
SwitchEffect::~SwitchEffect() = default;

}  // namespace LCD::MemoryCacheImpl
