#include "lcd/memorycache/iaboutus.h"
#include "lcd/memorycache/isystemdetail.h"
#include "lcdprotocolimpl/system/aboutus.h"
#include "lcdprotocolimpl/system/systemdetail.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;

std::vector<Component> sessionRows() {
    using About = IAboutUs::RequestCBType;
    using System = ISystemDetail::RequestCBType;
    return {
        component<IAboutUs>("AboutUs", "lcdMemoryCacheAboutUs",
                            {delivers<s_AboutUs>("AboutUsChanged", About::AboutUsChanged),
                             delivers<std::string>("LanguageChanged", About::LanguageChanged),
                             delivers<int>("CustomModeChanged", About::CustomModeChanged)}),
        component<ISystemDetail>("SystemDetail", "lcdMemoryCacheSystemDetail",
                                 {delivers<s_SystemDetail>("SystemDetailChanged", System::SystemDetailChanged)}),
    };
}

}  // namespace panel
