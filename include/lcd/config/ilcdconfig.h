// Settings of the front panel, found under "lcdConfig".
#pragma once

#include <map>

namespace LCD::Config {

inline constexpr const char* OBJ_CONFIG_NAME = "lcdConfig";

class ILcdConfig {
public:
    virtual ~ILcdConfig() = default;

    /// The programme-edit status with which a screen starts, by work mode. Any thread.
    virtual std::map<int, int> defaultProgramEditStatus() const = 0;
};

}  // namespace LCD::Config
