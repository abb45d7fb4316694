#include "lcdmemorycacheimpl/screen/screentake.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IScreenTake, ScreenTakeGetter, ScreenTakeSetter>;

ScreenTake::ScreenTake() = default;
ScreenTake::~ScreenTake() = default;

}  // namespace LCD::MemoryCacheImpl
