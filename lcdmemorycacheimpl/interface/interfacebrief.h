#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/interface/interfacebriefgetter.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IInterfaceBrief, InterfaceBriefGetter>;

class InterfaceBrief final : public ComponentShell<MemoryCache::IInterfaceBrief, InterfaceBriefGetter> {
public:
    InterfaceBrief();
    ~InterfaceBrief() override;

    void setSelectedInput(int interfaceId) override { getter->setSelectedInput(interfaceId); }
    int selectedInputId() const override { return getter->selectedInputId(); }
    void setSelectedOutput(int interfaceId) override { getter->setSelectedOutput(interfaceId); }
    int selectedOutputId() const override { return getter->selectedOutputId(); }
    using ComponentShell::asyncGetSubData;
    void asyncGetSubData(const std::string& name, RequestCBType type,
                         const std::function<void(const std::any&)>& callback) override {
        getter->notifyCacheChanged(name, type, callback);
    }
};

}  // namespace LCD::MemoryCacheImpl
