// The values that a host's configuration gives to the known settings.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "platform/ktp/isettings.h"

namespace ktp {

/// Filled by one thread before the host loads, read by any thread after that. A value that the setting
/// doesn't allow is refused with a `HostError` that begins with `place`.
class Settings final : public ISettings {
public:
    void set(const NumberSetting& setting, std::int64_t value, const std::string& place = {});
    void set(const TextSetting& setting, const std::string& value, const std::string& place = {});
    void set(const TableSetting& setting, std::map<int, int> value);

    NumberSetting::Value value(const NumberSetting& setting) const override;
    TextSetting::Value value(const TextSetting& setting) const override;
    TableSetting::Value value(const TableSetting& setting) const override;

private:
    std::map<std::string, NumberSetting::Value> numbers_;
    std::map<std::string, TextSetting::Value> texts_;
    std::map<std::string, TableSetting::Value> tables_;
};

}  // namespace ktp
