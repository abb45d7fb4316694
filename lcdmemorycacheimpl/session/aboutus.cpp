#include "lcdmemorycacheimpl/session/aboutus.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IAboutUs, AboutUsGetter>;

AboutUs::AboutUs() = default;
AboutUs::~AboutUs() = default;

}  // namespace LCD::MemoryCacheImpl
