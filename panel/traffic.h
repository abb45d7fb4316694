// What passed between the plug-in and the device, and which of it a delivery tells of.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include "panel/kind.h"
#include "platform/lcdcomm/icommobserver.h"

namespace panel {

using Clock = std::chrono::steady_clock;

/// Whose change a report told of.
enum class By { nobody, device, ownChange, otherClient };

/// A request of the plug-in's that has ended.
struct Sent {
    std::string name = {};  ///< "GET /zelto/v1/..."; empty when there was none
    std::string how = {};   ///< "status 200", "did not reach the device", "status 200, code 17 \"busy\""
    bool good = false;      ///< answered with status 200 and code 0
    Clock::duration took{};
    Clock::time_point end{};
};

/// Where the data of a delivery come from.
struct Origin {
    By by = By::nobody;        ///< nobody: no report since the delivery before
    Sent fetch = {};           ///< of this delivery; without a name there was none
    Clock::time_point time{};  ///< when the newest of the data came in

    /// "fetch", "report", "own change", "other client", or "mirror" for data that were there before.
    std::string text() const;
};

/// Watches a host's channel and receiver.
class Traffic final : public lcdcomm::ICommObserver {
public:
    /// `stale` is called by the decoder thread when mirrors may lack reports.
    explicit Traffic(std::function<void()> stale) : stale_(std::move(stale)) {}

    /// Reports that carry this token tell of our own changes. Any thread.
    void addOwnToken(const std::string& token);
    /// Called once for each delivery, in the thread that makes it.
    Origin originOf(const Component& component);
    /// The last request of the calling thread.
    static Sent lastSent();
    /// The last login and the last fetch of data. Any thread.
    Sent lastLogin() const;
    Sent lastFetch() const;

    void requestEnded(const lcdcomm::RequestSeen& request) override;
    void reportArrived(const lcdcomm::ReportSeen& report) override;
    void mirrorsStale() override { stale_(); }

private:
    struct Report {
        std::uint64_t serial = 0;
        By by = By::nobody;
        Clock::time_point time{};
    };

    const std::function<void()> stale_;

    mutable std::mutex mutex_;
    std::set<std::string> ownTokens_;                   // guarded by mutex_
    std::map<std::uint32_t, Report> reports_;           // guarded by mutex_: the last of each id
    std::uint64_t serial_ = 0;                          // guarded by mutex_
    std::map<const Component*, std::uint64_t> told_;    // guarded by mutex_: the last report that a delivery told of
    std::map<const Component*, Clock::time_point> in_;  // guarded by mutex_: when its newest data came in
    Sent login_;                                        // guarded by mutex_
    Sent fetch_;                                        // guarded by mutex_
    std::map<std::string, Sent> fetches_;               // guarded by mutex_: the last of each path
};

}  // namespace panel
