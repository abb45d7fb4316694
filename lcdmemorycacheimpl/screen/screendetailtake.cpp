#include "lcdmemorycacheimpl/screen/screendetailtake.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IScreenDetailTake, ScreenDetailTakeGetter, ScreenDetailTakeSetter>;

ScreenDetailTake::ScreenDetailTake() = default;
ScreenDetailTake::~ScreenDetailTake() = default;

}  // namespace LCD::MemoryCacheImpl
