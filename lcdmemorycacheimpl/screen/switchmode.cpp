#include "lcdmemorycacheimpl/screen/switchmode.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::ISwitchMode, SwitchModeGetter, SwitchModeSetter, DirtyOnTokenAndData,
                              RedeliverOnFailure>;

SwitchMode::SwitchMode() = default;
SwitchMode::~SwitchMode() = default;

}  // namespace LCD::MemoryCacheImpl
