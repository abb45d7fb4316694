#include "lcdmemorycacheimpl/interface/interfacebrief.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IInterfaceBrief, InterfaceBriefGetter>;

InterfaceBrief::InterfaceBrief() = default;
InterfaceBrief::~InterfaceBrief() = default;

}  // namespace LCD::MemoryCacheImpl
