#include "lcdmemorycacheimpl/session/systemdetail.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::ISystemDetail, SystemDetailGetter, SystemDetailSetter, DirtyOnTokenAndData,
                              RedeliverOuterOnFailure>;

SystemDetail::SystemDetail() = default;
SystemDetail::~SystemDetail() = default;

}  // namespace LCD::MemoryCacheImpl
