#include "lcdmemorycacheimpl/interface/interfacebriefgetter.h"

#include <algorithm>
#include <iterator>

#include "lcd/memorycache/constants.h"
#include "lcdprotocolimpl/interface/interfacerequests.h"

namespace LCD::MemoryCacheImpl {

using namespace ProtocolImpl;

namespace {

constexpr int kExpansionSource = 61;

InterfaceType keyOf(MemoryCache::IInterfaceBrief::RequestCBType type) {
    using CB = MemoryCache::IInterfaceBrief::RequestCBType;
    switch (type) {
        case CB::InterfacesInput:
        case CB::InputSelectedChanged:
        case CB::ExpandSourceChanged:
            return InterfaceType::Input;
        case CB::OutputSelectedChanged:
        case CB::InterfacesOutput:
            return InterfaceType::Output;
        default:
            return InterfaceType::Other;
    }
}

}  // namespace

void InterfaceBriefGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    node = ktp::api::get().find<MemoryCache::INode>(MemoryCache::constants::OBJ_MEMORYCACHE_NODE_NAME);
}

void InterfaceBriefGetter::registerReportDecodeCallback() {
    bindReport(0x50404, &InterfaceBriefGetter::decodeSubCardMode);
    bindReport(0x50104, &InterfaceBriefGetter::decodeWorkModeChanged);
    bindReport(0x61102, &InterfaceBriefGetter::decodeGeneral);
}

void InterfaceBriefGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::InterfacesInput, &InterfaceBriefGetter::notifyInterfacesChanged);
    bindHandler(CB::SubCardModeChanged, &InterfaceBriefGetter::notifyInputSelectedChanged);
    bindHandler(CB::InputSelectedChanged, &InterfaceBriefGetter::notifyInputSelectedChanged);
    bindHandler(CB::OutputSelectedChanged, &InterfaceBriefGetter::notifyOutputSelectedChanged);
    bindHandler(CB::InterfacesOutput, &InterfaceBriefGetter::notifyInterfacesChanged);
    bindHandler(CB::MOSAICChanged, &InterfaceBriefGetter::notifyMOSAICChanged);
    bindHandler(CB::ExpandSourceChanged, &InterfaceBriefGetter::notifyExpandSourceChanged);
}

// ---------------------------------------------------------------------------------- any thread

void InterfaceBriefGetter::notifyCacheChanged(const std::string& name, CB type,
                                              const std::function<void(const std::any&)>& callback) {
    notifyCacheChangedWithLambda(name, type, callback, keyOf(type));
}

void InterfaceBriefGetter::setSelectedInput(int interfaceId) {
    LockGuard lock(cacheMutex);
    if (interfaceId != selectedInput) {
        selectedInput = interfaceId;
        notifyCacheChanged({}, CB::InputSelectedChanged);
    }
}

int InterfaceBriefGetter::selectedInputId() {
    LockGuard lock(cacheMutex);
    return selectedInput;
}

void InterfaceBriefGetter::setSelectedOutput(int interfaceId) {
    LockGuard lock(cacheMutex);
    if (interfaceId != selectedOutput) {
        selectedOutput = interfaceId;
        notifyCacheChanged({}, CB::OutputSelectedChanged);
    }
}

int InterfaceBriefGetter::selectedOutputId() {
    LockGuard lock(cacheMutex);
    return selectedOutput;
}

// ------------------------------------------------------------------------------- reload thread

void InterfaceBriefGetter::reloadCache(const RequestData& /*request*/) { fetchCache(&getInterfaceBriefList); }

std::list<s_InterfaceBrief> InterfaceBriefGetter::chosenLocked(InterfaceType key, bool expansion) const {
    std::list<s_InterfaceBrief> chosen;
    std::copy_if(cache.begin(), cache.end(), std::back_inserter(chosen), [&](const s_InterfaceBrief& each) {
        const s_InterfaceConnector& connector = each.auxiliaryInfo.connectorInfo;
        return (connector.interfaceType & static_cast<int>(key)) != 0 &&
               (connector.type == kExpansionSource) == expansion;
    });
    return chosen;
}

void InterfaceBriefGetter::notifyInterfacesChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    if (const auto chosen = chosenLocked(request.key, false); !chosen.empty()) {
        notifySubCacheChanged(chosen, request);
    }
}

void InterfaceBriefGetter::notifyExpandSourceChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(chosenLocked(request.key, true), request);
}

void InterfaceBriefGetter::notifyInputSelectedChanged(const RequestData& request) {
    deliverField(&InterfaceBriefGetter::selectedInput, request);
}

void InterfaceBriefGetter::notifyOutputSelectedChanged(const RequestData& request) {
    deliverField(&InterfaceBriefGetter::selectedOutput, request);
}

// ----------------------------------------------------------------------------- receiver thread

bool InterfaceBriefGetter::emptyAndTell(CB type) {
    LockGuard lock(cacheMutex);
    cache.clear();
    cacheDirty = true;
    notifyCacheChanged({}, type);
    return true;
}

bool InterfaceBriefGetter::decodeSubCardMode(const std::string& /*body*/) {
    return emptyAndTell(CB::SubCardModeChanged);
}

bool InterfaceBriefGetter::decodeMOSAICChange(const std::string& /*body*/) { return emptyAndTell(CB::MOSAICChanged); }

bool InterfaceBriefGetter::decodeWorkModeChanged(const std::string& /*body*/) {
    LockGuard lock(cacheMutex);
    cache.clear();
    cacheDirty = true;
    return true;
}

bool InterfaceBriefGetter::decodeGeneral(const std::string& body) {
    std::vector<s_InterfaceGeneral> report;
    if (!ProtocolImpl::decodeGeneral(body, report)) {
        return false;
    }
    LockGuard lock(cacheMutex);
    for (const s_InterfaceGeneral& entry : report) {
        const auto found = std::find_if(cache.begin(), cache.end(), [&entry](const s_InterfaceBrief& each) {
            return each.interfaceId == entry.interfaceId;
        });
        if (found != cache.end()) {
            found->general.name = entry.general.name;
        }
        notifyCacheChanged({}, CB::GeneralChanged);
    }
    return true;
}

}  // namespace LCD::MemoryCacheImpl
