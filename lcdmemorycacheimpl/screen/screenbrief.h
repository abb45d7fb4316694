#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/screen/screenbriefgetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IScreenBrief, ScreenBriefGetter>;

class ScreenBrief final : public ComponentShell<MemoryCache::IScreenBrief, ScreenBriefGetter> {
public:
    ScreenBrief();
    ~ScreenBrief() override;

    void setSelectedRegularScreen(int screenId) override { getter->setSelectedRegularScreen(screenId); }
    int selectedRegularScreenId() override { return getter->selectedScreen(); }
    void setActiveScreenPgmStatus(const s_ScreenObjIdOnMode& value) override {
        getter->setActiveScreenPgmStatus(value);
    }
    int activeScreenPgmStatus(int screenId, int mode) override { return getter->activeScreenPgmStatus(screenId, mode); }
};

}  // namespace LCD::MemoryCacheImpl
