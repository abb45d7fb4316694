// The panel's settings, as the host's file gives them.
#include "lcd/config/ilcdconfig.h"

#include "platform/ktp/knownsettings.h"
#include "platform/ktp/pluginentry.h"

namespace {

class LcdConfig final : public LCD::Config::ILcdConfig {
public:
    std::map<int, int> defaultProgramEditStatus() const override { return status_; }

private:
    const std::map<int, int> status_ = ktp::valueOf(ktp::kProgramEditStatus);
};

ktp::ComponentInfo lcdConfig = ktp::describe<LcdConfig>("lcd.config");

}  // namespace

KTP_PLUGIN(lcdconfig, "1.0.0", &lcdConfig)
