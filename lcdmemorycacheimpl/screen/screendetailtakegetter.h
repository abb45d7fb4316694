#pragma once

#include <string>
#include <vector>

#include "ktp/imessagecenter.h"
#include "lcd/memorycache/iscreendetailtake.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/screen/take.h"

namespace LCD::MemoryCacheImpl {

class ScreenDetailTakeGetter : public ObjectCacheImpl<std::vector<ProtocolImpl::s_ScreenDetailTbar>, int,
                                                      MemoryCache::IScreenDetailTake::RequestCBType> {
public:
    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyScreenDetailTbarChanged(const RequestData& request);

    // receiver thread: takes and cuts are told there at once
    void notifyScreenDetailTakeChanged(const RequestData& request);
    bool decodeScreenDetailTake(const std::string& body);
    bool decodeScreenDetailCut(const std::string& body);
    bool decodeScreenDetailTbar(const std::string& body);
    bool decodeWorkModeChanged(const std::string& body);

    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "screen detail take"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

private:
    /// A transition has changed the layers: their mirrors fetch anew.
    void reReadLayerData();

    ktp::IMessageCenter* messageCenter = nullptr;  // fixed after start
};

}  // namespace LCD::MemoryCacheImpl
