#pragma once

#include <string>

#include "lcd/memorycache/ipresetbrief.h"
#include "lcd/memorycache/isequence.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

class PresetDetailSetter : public ObjectSamplingImpl<int, MemoryCache::IPresetBrief::RequestCBType> {
public:
    // sampling thread
    /// Notes who asked, so that the report of the load goes to them.
    bool setLoadPreset(const RequestData& request);
    bool setSavePreset(const RequestData& request);
    bool setDeletePreset(const RequestData& request);
    bool setPresetName(const RequestData& request);

    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "preset detail"; }
    void registerSetSubDataCallback() override;

private:
    MemoryCache::ISequence* sequence = nullptr;  // fixed after start
};

}  // namespace LCD::MemoryCacheImpl
