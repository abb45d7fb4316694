#include "lcdmemorycacheimpl/screen/switcheffectgetter.h"

#include "lcdprotocolimpl/screen/switchsettingsrequests.h"

namespace LCD::MemoryCacheImpl {

using CB = MemoryCache::ISwitchEffect::RequestCBType;
using namespace ProtocolImpl;

namespace {

void copyParameters(s_GetWipe& to, const s_SetWipe& from) {
    to.image = from.image;
    to.symmetry = from.symmetry;
    to.posX = from.posX;
    to.posY = from.posY;
    to.frameW = from.frameW;
    to.frameS = from.frameS;
    to.direction = from.direction;
    to.source = from.source;
}

void copyParameters(s_GetDve& to, const s_SetDve& from) {
    to.devType = from.devType;
    to.brightness = from.brightness;
    to.softness = from.softness;
    to.directionDev = from.directionDev;
    to.directionEffect = from.directionEffect;
    to.keySource = from.keySource;
    to.keySourceReverse = from.keySourceReverse;
    to.source = from.source;
    to.cutout = from.cutout;
}

/// A report carries the parameters of all effects, but the time and type of one.
void placeEffects(s_GetSwitchEffect& cache, const s_SetSwitchEffectParaBody& report) {
    s_GetSwitchEffectParaBody& effects = cache.switchEffect;
    copyParameters(effects.wipe, report.wipe);
    effects.fadeInOut.source = report.fadeInOut.source;
    effects.dip.source = report.dip.source;
    copyParameters(effects.dve, report.dve);
    const auto place = [&report](auto& effect) {
        effect.time = report.time;
        effect.type = report.type;
    };
    switch (report.type) {
        case 1:
            return place(effects.fadeInOut);
        case 2:
            return place(effects.dip);
        case 3:
            return place(effects.wipe);
        case 5:
            return place(effects.dve);
        default:
            return;
    }
}

void placeActiveEffect(s_GetSwitchEffect& cache, const s_SetActiveEffect& report) {
    cache.switchEffect.type = report.type;
}

}  // namespace

void SwitchEffectGetter::registerReportDecodeCallback() {
    bindReport(0x71205, &SwitchEffectGetter::decodeSwitchEffect);
    bindReport(0x71209, &SwitchEffectGetter::decodeActiveEffect);
}

void SwitchEffectGetter::registerNotifySubCacheCallback() {
    bindHandler(CB::SwitchEffectChanged, &SwitchEffectGetter::notifySwitchEffectChanged);
    bindHandler(CB::ActiveEffectChanged, &SwitchEffectGetter::notifyActiveEffectChanged);
}

void SwitchEffectGetter::reloadCache(const RequestData& /*request*/) { fetchCache(&getScreenSwitchEffect); }

bool SwitchEffectGetter::decodeSwitchEffect(const std::string& body) {
    return mergeReport(body, &decodeScreenSwitchEffect, &placeEffects, CB::SwitchEffectChanged,
                       AfterReport::dirtyUnlessDecoded);
}

bool SwitchEffectGetter::decodeActiveEffect(const std::string& body) {
    return mergeReport(body, &decodeActiveEffectType, &placeActiveEffect, CB::ActiveEffectChanged,
                       AfterReport::dirtyUnlessDecoded);
}

void SwitchEffectGetter::notifySwitchEffectChanged(const RequestData& request) { deliverCache(request); }

void SwitchEffectGetter::notifyActiveEffectChanged(const RequestData& request) {
    deliverPart([](const s_GetSwitchEffect& mirror) { return mirror.switchEffect.type; }, request);
}

}  // namespace LCD::MemoryCacheImpl
