#include "lcdmemorycacheimpl/layer/layerbriefgetter.h"

#include <QDebug>
#include <algorithm>

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/echo.h"
#include "lcdprotocolimpl/layer/layerdetail.h"
#include "lcdprotocolimpl/layer/layerrequests.h"

namespace LCD::MemoryCacheImpl {

using namespace ProtocolImpl;
namespace constants = MemoryCache::constants;

namespace {

constexpr std::uint32_t kTransitionFollowReport = 0x8112f;

/// Reads a report on layers. A failure is an error here, not a warning as elsewhere.
template <class List>
bool decodeLayers(const std::string& body, List& out, const char* subject, KT::LogSite site = KT::LogSite::here()) {
    return decodeReport(body, out, subject, site, spdlog::level::err);
}

void logSelection(int layerId) { qDebug() << "_selectedLayerId:" << layerId; }

void takeCreated(s_LayerBrief& layer, const s_LayerDetail& created) {
    layer.enable = created.enable;
    layer.general.name = created.general.name;
    layer.layerId = created.layerId;
    layer.layerIdObj = created.layerIdObj;
    layer.source = created.source;
}

}  // namespace

void LayerBriefGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    node = ktp::api::get().find<MemoryCache::INode>(constants::OBJ_MEMORYCACHE_NODE_NAME);
    user = ktp::api::get().find<MemoryCache::IUser>(constants::OBJ_MEMORYCACHE_USER_NAME);
    sequence = ktp::api::get().find<MemoryCache::ISequence>(constants::OBJ_MEMORYCACHE_SEQUENCE_NAME);
}

void LayerBriefGetter::registerReportDecodeCallback() {
    bindReport(0x81109, &LayerBriefGetter::decodeLayerGeneral);
    bindReport(0x50104, &LayerBriefGetter::resetCacheDirty);
    bindReport(0x50404, &LayerBriefGetter::decodeNodeSubcardMode);
    bindReport(0x8111a, &LayerBriefGetter::decodeLayerSwitch);
    bindReport(0x81102, &LayerBriefGetter::decodeLayerCreateChanged);
    bindReport(0x81103, &LayerBriefGetter::decodeLayerDeleteChanged);
    bindReport(0x8110a, &LayerBriefGetter::decodeLayerSource);
    bindReport(0x62203, &LayerBriefGetter::decodeMOSAICChange);
    bindReport(0x8112f, &LayerBriefGetter::decodeLayerTransFollowChanged);
}

void LayerBriefGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::LayerSwitchChanged, &LayerBriefGetter::notifyLayerSwitchChanged);
    bindHandler(CB::LayerCreateChanged, &LayerBriefGetter::notifyLayerCreateChanged);
    bindHandler(CB::LayerClearChanged, &LayerBriefGetter::notifyLayerClearChanged);
    bindHandler(CB::LayerSelectedUpdated, &LayerBriefGetter::notifyLayerSelectedChanged);
    bindHandler(CB::LayerTypeSelectChanged, &LayerBriefGetter::notifyLayerTypeSelectChanged);
    bindHandler(CB::LayersChanged, &LayerBriefGetter::notifyLayersChanged);
    bindHandler(CB::LayerSelectedChanged, &LayerBriefGetter::notifyLayerSelectedChanged);
    bindHandler(CB::MOSAICChanged, &LayerBriefGetter::notifyMOSAICChanged);
    bindHandler(CB::TypeChanged, &LayerBriefGetter::notifyTypeChanged);
    bindHandler(CB::MVRLayerSelectedChanged, &LayerBriefGetter::notifyMVRLayerSelectedChanged);
    bindHandler(CB::LayerTransFollow, &LayerBriefGetter::notifyLayerTransFollow);
}

// ---------------------------------------------------------------------------------- any thread

void LayerBriefGetter::notifyCacheChangedWithLamda(const std::string& name, CB type,
                                                   const std::function<void(std::any)>& callback,
                                                   const std::any& argument) {
    notifyCacheChangedWithLambda(name, type, callback, argument);
}

void LayerBriefGetter::setSelectedLayerType(int type) {
    LockGuard lock(cacheMutex);
    if (type != selectedType) {
        selectedType = type;
        notifyCacheChanged({}, CB::LayerTypeSelectChanged, type);
    }
}

int LayerBriefGetter::selectedLayerType() {
    LockGuard lock(cacheMutex);
    return selectedType;
}

void LayerBriefGetter::setSelectedLayer(const s_LayerUniqueId& id) {
    LockGuard lock(cacheMutex);
    if (id == _selectedLayerId) {
        return;
    }
    _selectedLayerId = id;
    logSelection(id.layerId);
    notifyCacheChanged({}, CB::LayerSelectedChanged, _selectedLayerId);
}

s_LayerUniqueId LayerBriefGetter::selectedLayerId() {
    LockGuard lock(cacheMutex);
    return _selectedLayerId;
}

void LayerBriefGetter::setMVRSelectedLayerId(int layerId) {
    LockGuard lock(cacheMutex);
    if (layerId != _selectedMVRLayerId) {
        _selectedMVRLayerId = layerId;
        qDebug() << "set _selectedMVRLayerId:" << layerId;
        notifyCacheChanged({}, CB::MVRLayerSelectedChanged, layerId);
    }
}

int LayerBriefGetter::MVRSelectedLayerId() {
    LockGuard lock(cacheMutex);
    return _selectedMVRLayerId;
}

void LayerBriefGetter::setCacheDirty() { updateSelectedLayer(); }

/// A selection whose layer is gone stays: a later reload or create may bring the layer back.
void LayerBriefGetter::updateSelectedLayer() {
    reloadCache({});
    LockGuard lock(cacheMutex);
    if (const s_LayerBrief* const layer = findLocked(_selectedLayerId.layerIdObj); layer != nullptr) {
        renumberSelectionLocked(layer->layerId);
    }
}

void LayerBriefGetter::renumberSelectionLocked(int layerId) {
    _selectedLayerId.layerId = layerId;
    logSelection(layerId);
    notifyCacheChanged({}, CB::LayerSelectedUpdated, _selectedLayerId);
    notifyCacheChanged({}, CB::LayerSelectedChanged, _selectedLayerId);
}

s_LayerBrief* LayerBriefGetter::findLocked(int layerId) {
    const auto found = std::find_if(cache.begin(), cache.end(),
                                    [layerId](const s_LayerBrief& layer) { return layer.layerId == layerId; });
    return found == cache.end() ? nullptr : &*found;
}

s_LayerBrief* LayerBriefGetter::findLocked(const s_LayerIdObj& identity) {
    const auto found = std::find_if(cache.begin(), cache.end(),
                                    [&identity](const s_LayerBrief& layer) { return layer.layerIdObj == identity; });
    return found == cache.end() ? nullptr : &*found;
}

// ------------------------------------------------------------------------------- reload thread

void LayerBriefGetter::reloadCache(const RequestData& /*request*/) {
    LockGuard lock(cacheMutex);
    cacheDirty = !getLayerBriefList(httpChannel, cache);
    if (cacheDirty) {
        cache.clear();
    }
}

void LayerBriefGetter::notifyLayerSwitchChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    s_LayerData data;
    data.layerId = std::any_cast<int>(request.key);
    if (const s_LayerBrief* const layer = findLocked(data.layerId); layer != nullptr) {
        data = {layer->layerId, layer->layerIdObj, layer->enable, layer->source.general.sourceId};
    }
    notifySubCacheChanged(data, request);
}

void LayerBriefGetter::notifyLayerCreateChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(std::any(cache), request);
}

void LayerBriefGetter::notifyLayerSelectedChanged(const RequestData& request) {
    deliverField(&LayerBriefGetter::_selectedLayerId, request);
}

void LayerBriefGetter::notifyLayerTypeSelectChanged(const RequestData& request) {
    deliverField(&LayerBriefGetter::selectedType, request);
}

void LayerBriefGetter::notifyLayersChanged(const RequestData& request) {
    const int mask = std::any_cast<int>(request.key);
    deliverPart(
        [mask](const std::vector<s_LayerBrief>& layers) {
            std::vector<s_LayerBrief> chosen;
            std::copy_if(layers.begin(), layers.end(), std::back_inserter(chosen),
                         [mask](const s_LayerBrief& layer) { return (layer.layerIdObj.type & mask) != 0; });
            return chosen;
        },
        request);
}

void LayerBriefGetter::notifyTypeChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    if (const s_LayerBrief* const layer = findLocked(std::any_cast<int>(request.key)); layer != nullptr) {
        notifySubCacheChanged(s_LayerUniqueId{layer->layerId, layer->layerIdObj}, request);
    }
}

void LayerBriefGetter::notifyMVRLayerSelectedChanged(const RequestData& request) {
    deliverField(&LayerBriefGetter::_selectedMVRLayerId, request);
}

void LayerBriefGetter::notifyLayerTransFollow(const RequestData& request) {
    std::pair<std::string, s_LayerTransitionFollow> told(request.name, {});
    {
        LockGuard lock(cacheMutex);
        const s_LayerBrief* const layer = findLocked(std::any_cast<int>(request.key));
        if (layer == nullptr) {
            KT_INFO("LayerBrief notifyLayerTransFollow cache miss objectId");
            return;
        }
        told.second = {layer->layerId, layer->transitionFollow};
    }
    KT_INFO("LayerBrief notifyLayerTransFollow emit requester={0} layerId={1} enable={2}", told.first,
            told.second.layerId, told.second.enable);
    notifySubCacheChanged(told, request);
}

// ----------------------------------------------------------------------------- receiver thread

bool LayerBriefGetter::resetCacheDirty(const std::string& /*body*/) {
    LockGuard lock(cacheMutex);
    cache.clear();
    cacheDirty = true;
    return true;
}

bool LayerBriefGetter::decodeNodeSubcardMode(const std::string& /*body*/) {
    LockGuard lock(cacheMutex);
    cacheDirty = true;
    notifyCacheChanged({}, CB::LayerTypeSelectChanged, selectedType);
    return true;
}

bool LayerBriefGetter::decodeMOSAICChange(const std::string& /*body*/) {
    LockGuard lock(cacheMutex);
    cacheDirty = true;
    notifyCacheChanged({}, CB::MOSAICChanged, selectedType);
    return true;
}

/// Merges the entries whose layer is known and tells nobody: the list's users learn of it elsewhere.
template <class Entry, class Merge>
bool LayerBriefGetter::mergeEach(const std::string& body, const char* subject, Merge merge, KT::LogSite site) {
    std::list<Entry> report;
    if (!decodeLayers(body, report, subject, site)) {
        return false;
    }
    LockGuard lock(cacheMutex);
    for (const Entry& entry : report) {
        if (s_LayerBrief* const layer = findLocked(entry.layerId); layer != nullptr) {
            merge(*layer, entry);
        }
    }
    return true;
}

bool LayerBriefGetter::decodeLayerGeneral(const std::string& body) {
    return mergeEach<s_LayerIdGeneral>(
        body, "interface layer General",
        [](s_LayerBrief& layer, const s_LayerIdGeneral& entry) { layer.general.name = entry.general.name; },
        KT::LogSite::here());
}

bool LayerBriefGetter::decodeLayerSource(const std::string& body) {
    return mergeEach<s_LayerSource>(
        body, "interface layer Source",
        [](s_LayerBrief& layer, const s_LayerSource& entry) {
            layer.source.general.sourceId = entry.source.general.sourceId;
            layer.source.general.sourceType = entry.source.general.sourceType;
        },
        KT::LogSite::here());
}

bool LayerBriefGetter::decodeLayerSwitch(const std::string& body) {
    std::list<s_LayerSwitch> report;
    if (!decodeLayers(body, report, "interface layer switch")) {
        return false;
    }
    if (report.empty()) {
        return true;
    }
    LockGuard lock(cacheMutex);
    for (const s_LayerSwitch& entry : report) {
        if (s_LayerBrief* const layer = findLocked(entry.layerId); layer != nullptr) {
            layer->enable = entry.enable;
            if (entry.enable == 0) {
                layer->general.name.clear();
            }
        }
        notifyCacheChanged({}, CB::LayerSwitchChanged, entry.layerId);
    }
    notifyCacheChanged({}, CB::LayerSwitchDone, report.front().layerId);
    return true;
}

bool LayerBriefGetter::decodeLayerCreateChanged(const std::string& body) {
    std::vector<s_LayerDetail> report;
    if (!decodeLayers(body, report, "layer create")) {
        return false;
    }
    if (report.empty()) {
        return true;
    }
    LockGuard lock(cacheMutex);
    for (const s_LayerDetail& created : report) {
        s_LayerBrief* layer = findLocked(created.layerIdObj);
        if (layer == nullptr) {
            layer = &cache.emplace_back();
        } else if (created.layerIdObj == _selectedLayerId.layerIdObj && created.layerId != _selectedLayerId.layerId) {
            renumberSelectionLocked(created.layerId);
        }
        takeCreated(*layer, created);
    }
    notifyCacheChanged({}, CB::LayerCreateChanged, std::any());
    return true;
}

bool LayerBriefGetter::decodeLayerDeleteChanged(const std::string& body) {
    std::vector<s_LayerId> report;
    if (!decodeLayers(body, report, "layer delete")) {
        return false;
    }
    if (report.empty()) {
        return true;
    }
    LockGuard lock(cacheMutex);
    for (const s_LayerId& deleted : report) {
        if (s_LayerBrief* const layer = findLocked(deleted.layerId); layer != nullptr) {
            layer->enable = 0;  // the entry itself stays until the next reload
        } else {
            KT_ERROR("not find delete layer id. id={0}", deleted.layerId);
        }
    }
    notifyCacheChanged({}, CB::LayerClearChanged, std::any());
    return true;
}

bool LayerBriefGetter::decodeLayerTransFollowChanged(const std::string& body,
                                                     const CommChannel::AutoReportSource& reportSource) {
    std::vector<s_LayerTransitionFollow> report;
    if (!decodeLayers(body, report, "layer select")) {
        return false;
    }
    LockGuard lock(cacheMutex);
    for (const s_LayerTransitionFollow& entry : report) {
        s_LayerBrief* const layer = findLocked(entry.layerId);
        if (layer == nullptr) {
            continue;
        }
        layer->transitionFollow = entry.enable;
        const std::string requester = echoRequester(*sequence, *user, kTransitionFollowReport, reportSource);
        KT_INFO("LayerBrief transFollow notify layerId={0} requestName={1} seq={2} reportSource.source={3}",
                entry.layerId, requester, sequence->getSeq(kTransitionFollowReport), reportSource.token);
        notifyCacheChanged(requester, CB::LayerTransFollow, entry.layerId);
    }
    return true;
}

}  // namespace LCD::MemoryCacheImpl
