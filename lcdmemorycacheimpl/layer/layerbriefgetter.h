#pragma once

#include <any>
#include <functional>
#include <string>
#include <vector>

#include "lcd/memorycache/ilayerbrief.h"
#include "lcd/memorycache/inode.h"
#include "lcd/memorycache/isequence.h"
#include "lcd/memorycache/iuser.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/layer/layer.h"

namespace LCD::MemoryCacheImpl {

/// A request's key holds the layer's number or the mask that its kind expects; one of another type ends the process.
class LayerBriefGetter : public ObjectCacheImpl<std::vector<ProtocolImpl::s_LayerBrief>, std::any,
                                                MemoryCache::ILayerBrief::RequestCBType> {
public:
    using CB = MemoryCache::ILayerBrief::RequestCBType;

    // any thread
    void setSelectedLayerType(int type);
    int selectedLayerType();
    void setSelectedLayer(const ProtocolImpl::s_LayerUniqueId& id);
    ProtocolImpl::s_LayerUniqueId selectedLayerId();
    void setMVRSelectedLayerId(int layerId);
    int MVRSelectedLayerId();
    void notifyCacheChangedWithLamda(const std::string& name, CB type, const std::function<void(std::any)>& callback,
                                     const std::any& argument);

    void onSystemRunHandle() override;
    /// Fetches at once, in the caller's thread, and lets the selection follow its layer.
    void setCacheDirty() override;
    std::string objectTypeName() const override { return "layer brief"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

    // reload thread
    void reloadCache(const RequestData& request) override;
    void notifyLayerSwitchChanged(const RequestData& request);
    void notifyLayerCreateChanged(const RequestData& request);
    void notifyLayerClearChanged(const RequestData& request) { notifyLayerCreateChanged(request); }
    void notifyLayerSelectedChanged(const RequestData& request);
    void notifyLayerTypeSelectChanged(const RequestData& request);
    void notifyLayersChanged(const RequestData& request);
    void notifyMOSAICChanged(const RequestData& request) { notifyLayerTypeSelectChanged(request); }
    void notifyTypeChanged(const RequestData& request);
    void notifyMVRLayerSelectedChanged(const RequestData& request);
    /// Delivers without the lock.
    void notifyLayerTransFollow(const RequestData& request);

    // receiver thread
    bool decodeLayerGeneral(const std::string& body);
    bool resetCacheDirty(const std::string& body);
    bool decodeNodeSubcardMode(const std::string& body);
    bool decodeLayerSwitch(const std::string& body);
    bool decodeLayerCreateChanged(const std::string& body);
    bool decodeLayerDeleteChanged(const std::string& body);
    bool decodeLayerSource(const std::string& body);
    bool decodeMOSAICChange(const std::string& body);
    bool decodeLayerTransFollowChanged(const std::string& body, const CommChannel::AutoReportSource& reportSource);

private:
    /// The layer that bears a number now, or null.
    ProtocolImpl::s_LayerBrief* findLocked(int layerId) LCD_REQUIRES(cacheMutex);
    ProtocolImpl::s_LayerBrief* findLocked(const ProtocolImpl::s_LayerIdObj& identity) LCD_REQUIRES(cacheMutex);
    void updateSelectedLayer();
    /// The selected layer bears another number now.
    void renumberSelectionLocked(int layerId) LCD_REQUIRES(cacheMutex);
    template <class Entry, class Merge>
    bool mergeEach(const std::string& body, const char* subject, Merge merge, KT::LogSite site);

    ProtocolImpl::s_LayerUniqueId _selectedLayerId LCD_GUARDED_BY(cacheMutex);
    int selectedType LCD_GUARDED_BY(cacheMutex) = 1;
    int _selectedMVRLayerId LCD_GUARDED_BY(cacheMutex) = -1;
    // fixed after start
    MemoryCache::INode* node = nullptr;
    MemoryCache::IUser* user = nullptr;
    MemoryCache::ISequence* sequence = nullptr;
};

}  // namespace LCD::MemoryCacheImpl
