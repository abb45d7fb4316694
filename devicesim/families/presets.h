// Presets: stored arrangements of the screens.
#pragma once

#include "devicesim/families/layerrules.h"

namespace devicesim {

/// An unknown preset has no value, one that shows a lost interface no source.
Verdict judgePreset(const json& state, const json& presetId);

}  // namespace devicesim
