#pragma once

#include <string>
#include <vector>

#include "lcd/memorycache/ipresetbrief.h"
#include "lcd/memorycache/isequence.h"
#include "lcd/memorycache/iuser.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/preset/preset.h"

namespace LCD::MemoryCacheImpl {

/// Every report that could be read leaves the page as good as a fetch does.
class PresetDetailGetter
    : public ObjectCacheImpl<ProtocolImpl::s_PresetDetailPage, int, MemoryCache::IPresetBrief::RequestCBType> {
public:
    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "preset detail"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyPresetDetailChanged(const RequestData& request);
    void notifyPresetCreateChanged(const RequestData& request);
    void notifyPreseApplyChanged(const RequestData& request);
    void notifyPresetDeleteChanged(const RequestData& request);
    void notifyPreseGeneralChanged(const RequestData& request);

    // receiver thread
    bool decodePresetChanged(const std::string& body);
    bool decodePresetGeneralChanged(const std::string& body);
    bool decodePresetCreate(const std::string& body);
    bool decodePresetDelete(const std::string& body);
    bool decodePresetApply(const std::string& body, const CommChannel::AutoReportSource& source);

private:
    ProtocolImpl::s_PresetDetail* findLocked(int presetId) LCD_REQUIRES(cacheMutex);
    void takeCreatedLocked(const ProtocolImpl::s_PresetDetail& created) LCD_REQUIRES(cacheMutex);
    /// The mirror is clean, and `name`, or everybody, hears of `type`.
    void settleLocked(MemoryCache::IPresetBrief::RequestCBType type, const std::string& name = {})
        LCD_REQUIRES(cacheMutex);

    // what the last reports said
    ProtocolImpl::s_PresetDetailPage lastCreated LCD_GUARDED_BY(cacheMutex);
    ProtocolImpl::s_PresetDetail lastApplied LCD_GUARDED_BY(cacheMutex);
    std::vector<ProtocolImpl::s_PresetId> lastDeleted LCD_GUARDED_BY(cacheMutex);
    std::vector<ProtocolImpl::s_PresetGeneral> lastRenamed LCD_GUARDED_BY(cacheMutex);
    // fixed after start
    MemoryCache::ISequence* sequence = nullptr;
    MemoryCache::IUser* user = nullptr;
};

}  // namespace LCD::MemoryCacheImpl
