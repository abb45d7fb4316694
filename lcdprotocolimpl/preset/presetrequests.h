#pragma once

#include <memory>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/preset/preset.h"

namespace LCD::ProtocolImpl {

bool getPresetDetail(Comm::IHttpChannel* channel, s_PresetDetailPage& out);
/// `sequence` comes back in report 0xa2203.
bool applyPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetApply> apply, int sequence);
bool createPreset(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetCreate> create);
bool updatePresetName(Comm::IHttpChannel* channel, std::shared_ptr<s_PresetGeneral> general);
bool deletePreset(Comm::IHttpChannel* channel, std::shared_ptr<std::vector<s_PresetId>> ids);

}  // namespace LCD::ProtocolImpl
