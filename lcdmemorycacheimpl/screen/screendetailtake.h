#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/screendetailtakegetter.h"
#include "lcdmemorycacheimpl/screen/screendetailtakesetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IScreenDetailTake, ScreenDetailTakeGetter, ScreenDetailTakeSetter>;

class ScreenDetailTake final
    : public ComponentShell<MemoryCache::IScreenDetailTake, ScreenDetailTakeGetter, ScreenDetailTakeSetter> {
public:
    ScreenDetailTake();
    ~ScreenDetailTake() override;
};

}  // namespace LCD::MemoryCacheImpl
