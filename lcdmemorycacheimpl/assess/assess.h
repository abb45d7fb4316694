#pragma once

#include "lcdmemorycacheimpl/assess/assessgetter.h"
#include "lcdmemorycacheimpl/engine/componentshell.h"

namespace LCD::MemoryCacheImpl {

extern template class ComponentShell<MemoryCache::IAssess, AssessGetter>;

class Assess final : public ComponentShell<MemoryCache::IAssess, AssessGetter> {
public:
    Assess();
    ~Assess() override;

    void asyncGetSubData(const std::string& name, RequestCBType type, std::any key,
                         const std::function<void(const std::any&)>& callback) override {
        getter->notifyCacheChanged(name, type, key, callback);
    }
};

}  // namespace LCD::MemoryCacheImpl
