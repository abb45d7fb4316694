#pragma once

#include <string>

#include "lcd/memorycache/iscreentake.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/take.h"

namespace LCD::MemoryCacheImpl {

class ScreenTakeGetter : public ObjectCacheImpl<ProtocolImpl::s_Tbar, int, MemoryCache::IScreenTake::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyScreenTbarChanged(const RequestData& request);

    // receiver thread: a take is told there at once
    void notifyScreenTakeChanged(const RequestData& request);
    bool decodeScreenTake(const std::string& body);
    bool decodeScreenCut(const std::string& body);
    bool decodeScreenTbar(const std::string& body);
    bool decodeWorkModeChanged(const std::string& body);

    std::string objectTypeName() const override { return "screen take"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;
};

}  // namespace LCD::MemoryCacheImpl
