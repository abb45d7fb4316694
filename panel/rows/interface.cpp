#include <list>
#include <nlohmann/json.hpp>

#include "lcd/memorycache/iinterfacebrief.h"
#include "lcdprotocolimpl/interface/interface.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;
using nlohmann::json;

namespace {

constexpr int kExpansionSource = 61;

/// The interfaces of some types, of expansion sources or of all else.
template <InterfaceType wanted, bool expansion>
json interfaces(const json& state, const json&) {
    json chosen = json::array();
    for (const json& each : state.at("interface").at("list")) {
        const json& connector = each.at("auxiliaryInfo").at("connectorInfo");
        if ((connector.at("interfaceType").get<int>() & static_cast<int>(wanted)) != 0 &&
            (connector.at("type") == kExpansionSource) == expansion) {
            chosen.push_back(each);
        }
    }
    return chosen;
}

template <InterfaceType wanted, bool expansion, class CB>
Kind list(const char* name, CB value, const char* remark = "") {
    return mirrors(delivers<std::list<s_InterfaceBrief>>(name, value, remark),
                   {.device = interfaces<wanted, expansion>,
                    .identity = "interfaceId",
                    .stale = {{"/*/state", "no report tells of it"}, {"/*/actualThumbTiming", "no report tells of it"}},
                    .silentWhenEmpty = !expansion});
}

}  // namespace

std::vector<Component> interfaceRows() {
    using CB = IInterfaceBrief::RequestCBType;
    return {component<IInterfaceBrief>(
        "InterfaceBrief", "lcdMemoryCacheInterfaceBrief",
        {list<InterfaceType::Input, false>("InterfacesInput", CB::InterfacesInput, "nothing when there is no input"),
         list<InterfaceType::Output, false>("InterfacesOutput", CB::InterfacesOutput,
                                            "nothing when there is no output"),
         list<InterfaceType::Input, true>("ExpandSourceChanged", CB::ExpandSourceChanged),
         delivers<int>("SubCardModeChanged", CB::SubCardModeChanged, "the selected input"),
         delivers<int>("InputSelectedChanged", CB::InputSelectedChanged),
         delivers<int>("OutputSelectedChanged", CB::OutputSelectedChanged),
         delivers<int>("MOSAICChanged", CB::MOSAICChanged, "the selected input"),
         neverDelivered("GeneralChanged", CB::GeneralChanged, "the lists tell of new names")},
        {0x50404, 0x50104, 0x61102})};
}

}  // namespace panel
