#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/switchmodegetter.h"
#include "lcdmemorycacheimpl/screen/switchmodesetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::ISwitchMode, SwitchModeGetter, SwitchModeSetter, DirtyOnTokenAndData,
                                     RedeliverOnFailure>;

class SwitchMode final : public ComponentShell<MemoryCache::ISwitchMode, SwitchModeGetter, SwitchModeSetter,
                                               DirtyOnTokenAndData, RedeliverOnFailure> {
public:
    SwitchMode();
    ~SwitchMode() override;
};

}  // namespace LCD::MemoryCacheImpl
