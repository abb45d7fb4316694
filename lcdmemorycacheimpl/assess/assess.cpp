#include "lcdmemorycacheimpl/assess/assess.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IAssess, AssessGetter>;

Assess::Assess() = default;
Assess::~Assess() = default;

}  // namespace LCD::MemoryCacheImpl
