#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/transitionpreviewgetter.h"
#include "lcdmemorycacheimpl/screen/transitionpreviewsetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::ITransitionPreview, TransitionPreviewGetter, TransitionPreviewSetter,
                                     DirtyOnTokenAndData, RedeliverOnFailure>;

class TransitionPreview final
    : public ComponentShell<MemoryCache::ITransitionPreview, TransitionPreviewGetter, TransitionPreviewSetter,
                            DirtyOnTokenAndData, RedeliverOnFailure> {
public:
    TransitionPreview();
    ~TransitionPreview() override;
};

}  // namespace LCD::MemoryCacheImpl
