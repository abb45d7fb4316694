// Every setting that a host's file may hold, for the host that checks it and the plug-ins that read it.
#pragma once

#include <algorithm>
#include <charconv>
#include <string_view>

#include "platform/ktp/isettings.h"

namespace ktp {

inline bool isPort(std::string_view text) {
    unsigned port = 0;
    const char* end = text.data() + text.size();
    return std::from_chars(text.data(), end, port).ptr == end && port >= 1 && port <= 65'535;
}

/// Scheme, host and perhaps a port; no user, no path.
inline bool isDeviceUrl(std::string_view url) {
    constexpr std::string_view kName = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-.";
    constexpr std::string_view kAddress = "0123456789abcdefABCDEF:.";
    if (!url.starts_with("http://") && !url.starts_with("https://")) {
        return false;
    }
    url.remove_prefix(url.find("//") + 2);
    const bool isAddress = url.starts_with('[');
    const std::size_t hostEnd = isAddress ? url.find(']') + 1 : std::min(url.find(':'), url.size());
    const std::string_view rest = url.substr(hostEnd);
    std::string_view host = url.substr(0, hostEnd);
    if (isAddress && !host.empty()) {
        host = host.substr(1, host.size() - 2);
    }
    return !host.empty() && host.find_first_not_of(isAddress ? kAddress : kName) == host.npos &&
           (rest.empty() || (rest.front() == ':' && isPort(rest.substr(1))));
}

inline constexpr TextSetting kDeviceUrl{"device.url", "http://127.0.0.1:8080", isDeviceUrl,
                                        "http://HOST[:PORT] or https://HOST[:PORT]"};

inline constexpr std::int64_t kMinuteMs = 60'000;
inline constexpr std::int64_t kMebibyte = 1 << 20;

// Each number: its name in code, its key in the file, the standard value, the least and the most.
#define KTP_NUMBER_SETTINGS(SETTING)                                                               \
    SETTING(kConnectTimeoutMs, "device.connect-timeout-ms", 3000, 1, kMinuteMs)                    \
    SETTING(kRequestTimeoutMs, "device.request-timeout-ms", 10'000, 1, 60 * kMinuteMs)             \
    SETTING(kStopGraceMs, "device.stop-grace-ms", 1400, 0, kMinuteMs)                              \
    SETTING(kLoginEveryMs, "device.login-every-ms", 1000, 1, kMinuteMs)                            \
    SETTING(kLoginWaitMs, "device.login-wait-ms", 2000, 0, kMinuteMs)                              \
    SETTING(kDeepestNesting, "device.deepest-nesting", 256, 1, 1024)                               \
    SETTING(kLargestReply, "device.largest-reply-bytes", 64 * kMebibyte, 1024, 1024 * kMebibyte)   \
    SETTING(kLargestUpload, "device.largest-upload-bytes", 64 * kMebibyte, 1024, 1024 * kMebibyte) \
    SETTING(kHeartbeatMs, "reports.heartbeat-ms", 1000, 10, kMinuteMs)                             \
    SETTING(kFirstRetryMs, "reports.first-retry-ms", 100, 1, kMinuteMs)                            \
    SETTING(kLongestRetryMs, "reports.longest-retry-ms", 5000, 1, kMinuteMs)                       \
    SETTING(kResyncEveryMs, "reports.resync-every-ms", 250, 1, kMinuteMs)                          \
    SETTING(kQueuedReports, "reports.queued-reports", 65'536, 1, 1 << 20)                          \
    SETTING(kQueuedBytes, "reports.queued-bytes", 256 * kMebibyte, 1024, 4096 * kMebibyte)         \
    SETTING(kLargestReport, "reports.largest-report-bytes", 8 * kMebibyte, 1024, 256 * kMebibyte)

#define KTP_DEFINE_SETTING(name, ...) inline constexpr NumberSetting name{__VA_ARGS__};
KTP_NUMBER_SETTINGS(KTP_DEFINE_SETTING)
#define KTP_POINT_TO_SETTING(name, ...) &name,
inline constexpr const NumberSetting* kNumberSettings[] = {KTP_NUMBER_SETTINGS(KTP_POINT_TO_SETTING)};
#undef KTP_POINT_TO_SETTING
#undef KTP_DEFINE_SETTING
#undef KTP_NUMBER_SETTINGS

inline constexpr TableSetting kProgramEditStatus{"program-edit-status"};

inline constexpr const TextSetting* kTextSettings[] = {&kDeviceUrl};
inline constexpr const TableSetting* kTableSettings[] = {&kProgramEditStatus};

}  // namespace ktp
