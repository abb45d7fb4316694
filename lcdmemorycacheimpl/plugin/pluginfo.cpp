#include "ktp/api.h"
#include "ktp/plugin.h"
#include "lcdmemorycacheimpl/plugin/componenttable.h"
#include "lcdmemorycacheimpl/plugin/constants.h"

const ktp::PluginInfo* pluginfo() {
    using namespace LCD::MemoryCacheImpl;
    static const ktp::PluginInfo info{ktp::kPluginRecordVersion, componentTable(), constants::PLUGIN_NAME,
                                      constants::PLUGIN_VERSION, "{\"end\":0 }"};
    return &info;
}

void pluginit(void* platform) { ktp::api::get().platform = static_cast<ktp::IPlatform*>(platform); }
