#pragma once

#include "lcdmemorycacheimpl/engine/componentshell.h"
#include "lcdmemorycacheimpl/session/aboutusgetter.h"

namespace LCD::MemoryCacheImpl {

using AboutUsShell = ComponentShell<MemoryCache::IAboutUs, AboutUsGetter>;
extern template class ComponentShell<MemoryCache::IAboutUs, AboutUsGetter>;

class AboutUs final : public AboutUsShell {
public:
    AboutUs();
    ~AboutUs() override;

    void setLanguageChanged(const std::string& language) override { getter->setLanguageChanged(language); }
};

}  // namespace LCD::MemoryCacheImpl
