#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/session/systemdetailgetter.h"
#include "lcdmemorycacheimpl/session/systemdetailsetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::ISystemDetail, SystemDetailGetter, SystemDetailSetter,
                                     DirtyOnTokenAndData, RedeliverOuterOnFailure>;

class SystemDetail final : public ComponentShell<MemoryCache::ISystemDetail, SystemDetailGetter, SystemDetailSetter,
                                                 DirtyOnTokenAndData, RedeliverOuterOnFailure> {
public:
    SystemDetail();
    ~SystemDetail() override;
};

}  // namespace LCD::MemoryCacheImpl
