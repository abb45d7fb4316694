#include "lcdmemorycacheimpl/preset/presetdetailgetter.h"

#include <algorithm>

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/echo.h"
#include "lcdmemorycacheimpl/preset/presetreports.h"
#include "lcdprotocolimpl/preset/presetrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IPresetBrief::RequestCBType;
using namespace ProtocolImpl;
namespace constants = MemoryCache::constants;

namespace {

/// Who is told of a load: one from the preset container concerns everybody, one from the control behind it the
/// container.
std::string addresseeOf(const std::string& requester) {
    if (requester == MENUREQUESTERNAME) {
        return {};
    }
    return requester == BIZREQUESTERNAME ? MENUREQUESTERNAME : requester;
}

}  // namespace

void PresetDetailGetter::onSystemRunHandle() {
    ObjectCacheImpl::onSystemRunHandle();
    sequence = ktp::api::get().find<MemoryCache::ISequence>(constants::OBJ_MEMORYCACHE_SEQUENCE_NAME);
    user = ktp::api::get().find<MemoryCache::IUser>(constants::OBJ_MEMORYCACHE_USER_NAME);
}

void PresetDetailGetter::registerReportDecodeCallback() {
    bindReport(0xa2100, &PresetDetailGetter::decodePresetChanged);
    bindReport(0xa2105, &PresetDetailGetter::decodePresetGeneralChanged);
    bindReport(0xa2101, &PresetDetailGetter::decodePresetCreate);
    bindReport(0xa2106, &PresetDetailGetter::decodePresetDelete);
    bindReport(0xa2203, &PresetDetailGetter::decodePresetApply);
}

void PresetDetailGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::PresetDetailChanged, &PresetDetailGetter::notifyPresetDetailChanged);
    bindHandler(CB::PresetCreateChanged, &PresetDetailGetter::notifyPresetCreateChanged);
    bindHandler(CB::PresetApplyChanged, &PresetDetailGetter::notifyPreseApplyChanged);
    bindHandler(CB::PresetDeleteChanged, &PresetDetailGetter::notifyPresetDeleteChanged);
    bindHandler(CB::PresetGeneralChanged, &PresetDetailGetter::notifyPreseGeneralChanged);
}

// ------------------------------------------------------------------------------- reload thread

void PresetDetailGetter::reloadCache(const RequestData& /*request*/) {
    fetchCache(&getPresetDetail, "Preset Detail Changed Decode fail");
}

void PresetDetailGetter::notifyPresetDetailChanged(const RequestData& request) { deliverCache(request); }

void PresetDetailGetter::notifyPresetCreateChanged(const RequestData& request) {
    deliverField(&PresetDetailGetter::lastCreated, request);
}

void PresetDetailGetter::notifyPreseApplyChanged(const RequestData& request) {
    LockGuard lock(cacheMutex);
    notifySubCacheChanged(std::pair<std::string, s_PresetDetail>(request.name, lastApplied), request);
}

void PresetDetailGetter::notifyPresetDeleteChanged(const RequestData& request) {
    deliverField(&PresetDetailGetter::lastDeleted, request);
}

void PresetDetailGetter::notifyPreseGeneralChanged(const RequestData& request) {
    deliverField(&PresetDetailGetter::lastRenamed, request);
}

// ----------------------------------------------------------------------------- receiver thread

s_PresetDetail* PresetDetailGetter::findLocked(int presetId) {
    const auto found = std::find_if(cache.list.begin(), cache.list.end(),
                                    [presetId](const s_PresetDetail& each) { return each.presetId == presetId; });
    return found == cache.list.end() ? nullptr : &*found;
}

void PresetDetailGetter::settleLocked(CB type, const std::string& name) {
    cacheDirty = false;
    notifyCacheChanged(name, type);
}

bool PresetDetailGetter::decodePresetChanged(const std::string& body) {
    s_PresetDetailPage report;
    if (!decodeReport(body, report, "preset detail")) {
        KT_WARN("Preset Detail Changed Decode fail");
        return false;
    }
    LockGuard lock(cacheMutex);
    for (const s_PresetDetail& changed : report.list) {
        if (s_PresetDetail* const preset = findLocked(changed.presetId); preset != nullptr) {
            preset->general = changed.general;
            preset->displays = changed.displays;
        } else {
            cache.list.push_back(changed);
            ++cache.count;
        }
    }
    settleLocked(CB::PresetDetailChanged);
    return true;
}

bool PresetDetailGetter::decodePresetCreate(const std::string& body) {
    LockGuard lock(cacheMutex);
    lastCreated.list.clear();
    s_PresetDetailPage report;
    if (!decodeReport(body, report, "preset create ")) {
        KT_WARN("Preset Create Changed Decode fail");
        return false;
    }
    for (const s_PresetDetail& created : report.list) {
        takeCreatedLocked(created);
        lastCreated.list.push_back(created);
    }
    settleLocked(CB::PresetCreateChanged);
    return true;
}

void PresetDetailGetter::takeCreatedLocked(const s_PresetDetail& created) {
    s_PresetDetail* const preset = findLocked(created.presetId);
    if (preset == nullptr) {
        cache.list.push_back(created);
        cache.list.sort([](const s_PresetDetail& a, const s_PresetDetail& b) { return a.presetId < b.presetId; });
        return;
    }
    preset->general = created.general;
    preset->presetIdObj = created.presetIdObj;
    preset->displays = created.displays;
    if (cache.currentPresetId == created.presetId) {  // overwritten, it is no longer what the screens show
        cache.currentPresetId = 0;
        lastCreated.currentPresetId = 0;
    }
}

bool PresetDetailGetter::decodePresetGeneralChanged(const std::string& body) {
    LockGuard lock(cacheMutex);
    lastRenamed.clear();
    if (!decodeReport(body, lastRenamed, "preset general ")) {
        KT_WARN("Preset General changed decode failed.");
        return false;
    }
    for (const s_PresetGeneral& renamed : lastRenamed) {
        if (s_PresetDetail* const preset = findLocked(renamed.presetId); preset != nullptr) {
            preset->general.name = renamed.general.name;
        }
    }
    settleLocked(CB::PresetGeneralChanged);
    return true;
}

bool PresetDetailGetter::decodePresetDelete(const std::string& body) {
    LockGuard lock(cacheMutex);
    lastDeleted.clear();
    if (!decodeReport(body, lastDeleted, "preset delete ")) {
        KT_WARN("Preset Delete Changed Decode fail");
        return false;
    }
    for (const s_PresetId& deleted : lastDeleted) {
        const auto found = std::find_if(cache.list.begin(), cache.list.end(), [&deleted](const s_PresetDetail& each) {
            return each.presetId == deleted.presetId;
        });
        if (found != cache.list.end()) {
            cache.list.erase(found);
            --cache.count;
        }
    }
    settleLocked(CB::PresetDeleteChanged);
    return true;
}

bool PresetDetailGetter::decodePresetApply(const std::string& body, const CommChannel::AutoReportSource& source) {
    s_PresetApply report;
    if (!decodeReport(body, report, "preset apply ")) {
        KT_WARN("Preset Apply Changed Decode fail");
        return false;
    }
    LockGuard lock(cacheMutex);
    if (s_PresetDetail* const preset = findLocked(report.presetId); preset != nullptr) {
        preset->presetIdObj.sceneType = report.sceneType;
        cache.currentPresetId = report.presetId;
        lastApplied = *preset;
    }
    settleLocked(CB::PresetApplyChanged, addresseeOf(echoRequester(*sequence, *user, kPresetApplyReport, source)));
    return true;
}

}  // namespace LCD::MemoryCacheImpl
