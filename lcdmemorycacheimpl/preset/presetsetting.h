#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/preset/presetdetailgetter.h"
#include "lcdmemorycacheimpl/preset/presetdetailsetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IPresetBrief, PresetDetailGetter, PresetDetailSetter,
                                     DirtyOnTokenAndData, RedeliverOnFailure>;

class PresetSetting final : public ComponentShell<MemoryCache::IPresetBrief, PresetDetailGetter, PresetDetailSetter,
                                                  DirtyOnTokenAndData, RedeliverOnFailure> {
public:
    PresetSetting();
    ~PresetSetting() override;

    void setKeyValue(int value) override;
    void setKeyValueChangedCB(const std::function<void(int)>& callback) override { keyValueChanged_ = callback; }

private:
    std::function<void(int)> keyValueChanged_;
};

}  // namespace LCD::MemoryCacheImpl
