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
                            {mirrors(delivers<s_AboutUs>("AboutUsChanged", About::AboutUsChanged), "/custom"),
                             delivers<std::string>("LanguageChanged", About::LanguageChanged),
                             mirrors(delivers<int>("CustomModeChanged", About::CustomModeChanged), "/custom/mode")},
                            {0xe0100}),
        component<ISystemDetail>("SystemDetail", "lcdMemoryCacheSystemDetail",
                                 {settable<s_SystemDetail>(mirrors(
                                     delivers<s_SystemDetail>("SystemDetailChanged", System::SystemDetailChanged,
                                                              "a change is not sent: the component takes none"),
                                     "/system/detail"))},
                                 {0x7115e}),
    };
}

}  // namespace panel
