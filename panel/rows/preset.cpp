#include <nlohmann/json.hpp>

#include "lcd/memorycache/ipresetbrief.h"
#include "lcdprotocolimpl/preset/preset.h"
#include "panel/kind.h"

namespace panel {

using namespace LCD::MemoryCache;
using namespace LCD::ProtocolImpl;
using nlohmann::json;

namespace {

// All on one page.
json page(const json& state, const json&) {
    json all = state.at("preset");
    const std::size_t count = all.at("list").size();
    all.update({{"count", count}, {"page", 1}, {"totalCount", count}, {"totalPage", 1}});
    return all;
}

}  // namespace

std::vector<Component> presetRows() {
    using CB = IPresetBrief::RequestCBType;
    return {
        component<IPresetBrief>("PresetSetting", "lcdMemoryCachePresetSetting",
                                {mirrors(delivers<s_PresetDetailPage>("PresetDetailChanged", CB::PresetDetailChanged),
                                         {.device = page,
                                          .identity = "presetId",
                                          .stale = {{"/count", "a created preset is not counted"},
                                                    {"/totalCount", "no report changes it"},
                                                    {"/totalPage", "no report changes it"}}}),
                                 settable<s_PresetCreate>(delivers<s_PresetDetailPage>(
                                     "PresetCreateChanged", CB::PresetCreateChanged, "what was last created")),
                                 settable<s_PresetApply>(delivers<std::pair<std::string, s_PresetDetail>>(
                                     "PresetApplyChanged", CB::PresetApplyChanged, "requester and preset", &pairText)),
                                 settable<std::vector<s_PresetId>>(delivers<std::vector<s_PresetId>>(
                                     "PresetDeleteChanged", CB::PresetDeleteChanged, "what was last deleted")),
                                 settable<s_PresetGeneral>(delivers<std::vector<s_PresetGeneral>>(
                                     "PresetGeneralChanged", CB::PresetGeneralChanged, "what was last renamed"))},
                                {0xa2100, 0xa2105, 0xa2101, 0xa2106, 0xa2203})};
}

}  // namespace panel
