#include "lcdmemorycacheimpl/screen/screenbrief.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IScreenBrief, ScreenBriefGetter>;

ScreenBrief::ScreenBrief() = default;
ScreenBrief::~ScreenBrief() = default;

}  // namespace LCD::MemoryCacheImpl
