#pragma once

#include <any>
#include <functional>
#include <list>
#include <string>

#include "lcd/memorycache/iinterfacebrief.h"
#include "lcd/memorycache/inode.h"
#include "lcdmemorycacheimpl/engine/objectcacheimpl.h"
#include "lcdprotocolimpl/interface/interface.h"

namespace LCD::MemoryCacheImpl {

class InterfaceBriefGetter
    : public ObjectCacheImpl<std::list<ProtocolImpl::s_InterfaceBrief>, ProtocolImpl::InterfaceType,
                             MemoryCache::IInterfaceBrief::RequestCBType> {
public:
    using CB = MemoryCache::IInterfaceBrief::RequestCBType;

    // any thread
    /// Posts a request; its key follows from its type.
    void notifyCacheChanged(const std::string& name, CB type,
                            const std::function<void(const std::any&)>& callback = {});
    void setSelectedInput(int interfaceId);
    int selectedInputId();
    void setSelectedOutput(int interfaceId);
    int selectedOutputId();

    void onSystemRunHandle() override;
    std::string objectTypeName() const override { return "interface brief"; }
    void registerNotifySubCacheCallback() override;
    void registerReportDecodeCallback() override;

    // reload thread
    void notifyCacheChanged(const RequestData& request) override { ObjectCacheImpl::notifyCacheChanged(request); }
    void reloadCache(const RequestData& request) override;
    void notifyInterfacesChanged(const RequestData& request);
    void notifyExpandSourceChanged(const RequestData& request);
    void notifyInputSelectedChanged(const RequestData& request);
    void notifyOutputSelectedChanged(const RequestData& request);
    void notifyMOSAICChanged(const RequestData& request) { notifyInputSelectedChanged(request); }

    // receiver thread
    bool decodeSubCardMode(const std::string& body);
    bool decodeWorkModeChanged(const std::string& body);
    bool decodeGeneral(const std::string& body);
    /// Bound to no report.
    bool decodeMOSAICChange(const std::string& body);

private:
    /// The interfaces of the kinds that `key` names, either the expansion sources or the others.
    std::list<ProtocolImpl::s_InterfaceBrief> chosenLocked(ProtocolImpl::InterfaceType key, bool expansion) const
        LCD_REQUIRES(cacheMutex);
    bool emptyAndTell(CB type);

    int selectedInput LCD_GUARDED_BY(cacheMutex) = -1;
    int selectedOutput LCD_GUARDED_BY(cacheMutex) = -1;
    MemoryCache::INode* node = nullptr;  // fixed after start
};

}  // namespace LCD::MemoryCacheImpl
