#pragma once

#include <list>
#include <string>
#include <vector>

#include "lcd/config/ilcdconfig.h"
#include "lcd/memorycache/inode.h"
#include "lcd/memorycache/iscreenbrief.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/screen.h"

namespace LCD::MemoryCacheImpl {

/// Under this name the getter asks the node for its mode.
inline constexpr char requesterName[] = "ScreenBrief";

class ScreenBriefGetter
    : public ObjectCacheImpl<std::list<ProtocolImpl::s_ScreenBrief>, int, MemoryCache::IScreenBrief::RequestCBType> {
public:
    using PgmStatus = MemoryCache::IScreenBrief::s_ScreenObjIdOnMode;

    // any thread
    void setSelectedRegularScreen(int screenId);
    int selectedScreen();
    void setActiveScreenPgmStatus(const PgmStatus& value);
    int activeScreenPgmStatus(int screenId, int mode);

    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "screen brief"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyRegularScreenSelectedChanged(const RequestData& request);
    void notifyActiveScreenTypeChanged(const RequestData& request);
    void notifyActiveScreenSelectChanged(const RequestData& request);
    /// Asks the node for its mode; the delivery follows in the node's reload thread.
    void notifyActiveScreenPgmStatusChanged(const RequestData& request);
    void notifyActiveScreenInfoChanged(const RequestData& request);
    /// Delivers the whole list. Bound to no kind.
    void notifyScreensChanged(const RequestData& request);

    // receiver thread
    bool decodeWorkModeChanged(const std::string& body);

private:
    /// Gives each screen the status that is configured for each work mode.
    void initPgmEditStatusLocked() LCD_REQUIRES(cacheMutex);
    /// Stores the status. Whether the subscribers are to hear of it: not before a screen was selected.
    bool storePgmStatusLocked(const PgmStatus& value) LCD_REQUIRES(cacheMutex);
    int pgmStatusLocked(int screenId, int mode) const LCD_REQUIRES(cacheMutex);
    ProtocolImpl::s_ScreenBrief activeScreenLocked() const LCD_REQUIRES(cacheMutex);
    void deliverPgmStatus(int mode, const RequestData& request);

    int selectedRegularScreenId LCD_GUARDED_BY(cacheMutex) = -1;
    int activeScreenId LCD_GUARDED_BY(cacheMutex) = -1;
    std::vector<PgmStatus> pgmStatusList LCD_GUARDED_BY(cacheMutex);
    // fixed after start
    Config::ILcdConfig* config = nullptr;
    MemoryCache::INode* node = nullptr;
};

}  // namespace LCD::MemoryCacheImpl
