#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/screentakegetter.h"
#include "lcdmemorycacheimpl/screen/screentakesetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IScreenTake, ScreenTakeGetter, ScreenTakeSetter>;

class ScreenTake final : public ComponentShell<MemoryCache::IScreenTake, ScreenTakeGetter, ScreenTakeSetter> {
public:
    ScreenTake();
    ~ScreenTake() override;
};

}  // namespace LCD::MemoryCacheImpl
