#include "lcdmemorycacheimpl/preset/presetdetailsetter.h"

#include "lcd/memorycache/constants.h"
#include "lcdmemorycacheimpl/engine/echo.h"
#include "lcdmemorycacheimpl/preset/presetreports.h"
#include "lcdprotocolimpl/preset/presetrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::IPresetBrief::RequestCBType;
using ProtocolImpl::s_PresetApply;

void PresetDetailSetter::onSystemRunHandle() {
    ObjectSamplingImpl::onSystemRunHandle();
    sequence = ktp::api::get().find<MemoryCache::ISequence>(MemoryCache::constants::OBJ_MEMORYCACHE_SEQUENCE_NAME);
}

void PresetDetailSetter::registerSetSubDataCallback() {
    bindHandler(CB::PresetCreateChanged, &PresetDetailSetter::setSavePreset);
    bindHandler(CB::PresetApplyChanged, &PresetDetailSetter::setLoadPreset);
    bindHandler(CB::PresetDeleteChanged, &PresetDetailSetter::setDeletePreset);
    bindHandler(CB::PresetGeneralChanged, &PresetDetailSetter::setPresetName);
}

bool PresetDetailSetter::setLoadPreset(const RequestData& request) {
    const auto apply = recordOf<s_PresetApply>(request, "s_PresetApply");
    if (apply == nullptr) {
        return false;
    }
    const int number = drawSequence(*sequence, kPresetApplyReport, request.name);
    return ProtocolImpl::applyPreset(httpChannel, apply, number);
}

bool PresetDetailSetter::setSavePreset(const RequestData& request) {
    return sendRecord(request, "s_PresetCreate", &ProtocolImpl::createPreset);
}

bool PresetDetailSetter::setDeletePreset(const RequestData& request) {
    return sendRecord(request, "s_PresetIdArray", &ProtocolImpl::deletePreset);
}

bool PresetDetailSetter::setPresetName(const RequestData& request) {
    return sendRecord(request, "s_InterfaceGeneral", &ProtocolImpl::updatePresetName, "val_ is nullptr");
}

}  // namespace LCD::MemoryCacheImpl
