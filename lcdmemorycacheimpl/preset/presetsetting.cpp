#include "lcdmemorycacheimpl/preset/presetsetting.h"

namespace LCD::MemoryCacheImpl {

template class ComponentShell<MemoryCache::IPresetBrief, PresetDetailGetter, PresetDetailSetter, DirtyOnTokenAndData,
                              RedeliverOnFailure>;

PresetSetting::PresetSetting() = default;
PresetSetting::~PresetSetting() = default;

void PresetSetting::setKeyValue(int value) {
    if (keyValueChanged_) {
        keyValueChanged_(value);
    }
}

}  // namespace LCD::MemoryCacheImpl
