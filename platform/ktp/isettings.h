// The host's settings, found under "ktp_default_settings".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "ktp/api.h"

namespace ktp {

inline constexpr const char* kSettingsName = "ktp_default_settings";

/// A whole number between two bounds.
struct NumberSetting {
    using Value = std::int64_t;

    const char* key;  ///< "SECTION.KEY" in the host's file
    Value standard;
    Value least;
    Value most;

    Value standardValue() const { return standard; }
};

/// A text of a given form.
struct TextSetting {
    using Value = std::string;

    const char* key;
    const char* standard;
    bool (*accepts)(std::string_view text);
    const char* form;  ///< of the texts that are accepted, for a person

    Value standardValue() const { return standard; }
};

/// A section of numbers by number, empty unless it is given.
struct TableSetting {
    using Value = std::map<int, int>;

    const char* key;

    Value standardValue() const { return {}; }
};

/// What the host's configuration says, or the standard value where it says nothing. Any thread.
class ISettings {
public:
    virtual NumberSetting::Value value(const NumberSetting& setting) const = 0;
    virtual TextSetting::Value value(const TextSetting& setting) const = 0;
    virtual TableSetting::Value value(const TableSetting& setting) const = 0;

protected:
    ~ISettings() = default;
};

/// For a plug-in: the host's value, or the standard one under a host that offers no settings.
template <class Setting>
typename Setting::Value valueOf(const Setting& setting) {
    const auto* settings = api::get().find<ISettings>(kSettingsName);
    return settings == nullptr ? setting.standardValue() : settings->value(setting);
}

}  // namespace ktp
