#include "platform/ktp/settings.h"

#include <fmt/format.h>

#include "platform/ktp/hosterror.h"

namespace ktp {

namespace {

constexpr std::size_t kLongestText = 1024;

template <class Setting>
typename Setting::Value given(const std::map<std::string, typename Setting::Value>& values, const Setting& setting) {
    const auto found = values.find(setting.key);
    return found == values.end() ? setting.standardValue() : found->second;
}

}  // namespace

void Settings::set(const NumberSetting& setting, std::int64_t value, const std::string& place) {
    if (value < setting.least || value > setting.most) {
        throw HostError(fmt::format("{}{}: {} is out of range, use {} to {}", place, setting.key, value, setting.least,
                                    setting.most));
    }
    numbers_[setting.key] = value;
}

void Settings::set(const TextSetting& setting, const std::string& value, const std::string& place) {
    if (value.size() > kLongestText || !setting.accepts(value)) {
        throw HostError(fmt::format("{}{}: \"{}\" is not of the form {}", place, setting.key,
                                    value.substr(0, kLongestText), setting.form));
    }
    texts_[setting.key] = value;
}

void Settings::set(const TableSetting& setting, std::map<int, int> value) { tables_[setting.key] = std::move(value); }

NumberSetting::Value Settings::value(const NumberSetting& setting) const { return given(numbers_, setting); }

TextSetting::Value Settings::value(const TextSetting& setting) const { return given(texts_, setting); }

TableSetting::Value Settings::value(const TableSetting& setting) const { return given(tables_, setting); }

}  // namespace ktp
