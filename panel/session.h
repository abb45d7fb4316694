// A host with the plug-in in it, and a device to talk to.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "devicesim/devicesim.h"
#include "lcd/comm/ihttpchannel.h"
#include "lcd/memorycache/iuser.h"
#include "panel/kind.h"
#include "panel/traffic.h"
#include "platform/ktp/host.h"
#include "platform/lcdcomm/icommstatus.h"

namespace panel {

struct SessionOptions {
    std::string deviceUrl = {};   ///< empty: a simulated device inside this program
    std::string configFile = {};  ///< empty: the one beside this program
    std::vector<std::pair<const ktp::NumberSetting*, std::int64_t>> settings = {};  ///< instead of the file's
    devicesim::Options simulated = {};                                              ///< of the device in this program
};

/// One delivery, taken apart in the thread that made it.
struct Delivered {
    const Component* component = nullptr;
    const Kind* kind = nullptr;
    std::string text = {};  ///< the payload as JSON
    Origin origin = {};
    Clock::time_point time = {};
};
using Receiver = std::function<void(Delivered)>;

/// Loaded from construction, so that subscribers can be entered; runs from `start` to `stop`. While it runs it logs in
/// anew when the device asks for that, and asks again for all that is shown when reports may have been missed and after
/// each new token. Belongs to one thread.
class Session {
public:
    /// Raises std::runtime_error with one line for a person.
    explicit Session(const SessionOptions& options);
    ~Session() { stop(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start();
    void stop();
    /// Logs in and waits until the stream of reports is open and has marked the mirrors. Raises `Unreachable` with the
    /// URL and what went wrong.
    void login(std::chrono::milliseconds timeout);

    const std::string& deviceUrl() const { return deviceUrl_; }
    /// The last fetch of data that any component has made.
    Sent lastFetch() const { return traffic_.lastFetch(); }
    /// The component bound to `lookup` as its interface. Raises std::runtime_error when there is none.
    template <class Interface>
    Interface& find(const char* lookup) {
        return *static_cast<Interface*>(object(lookup));
    }
    LCD::MemoryCache::IUser& user() { return find<LCD::MemoryCache::IUser>("lcdMemoryCacheUser"); }
    LCD::Comm::IHttpChannel& channel() { return find<LCD::Comm::IHttpChannel>("lcdHttpChannel"); }
    lcdcomm::ICommStatus& status() { return find<lcdcomm::ICommStatus>(lcdcomm::kCommStatusName); }

    void subscribe(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback);
    void get(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
             const std::any& key = {});
    void set(const Component& component, const Kind& kind, const std::string& name, int key, const std::any& data,
             const SetResult& callback);
    /// Asks until a delivery comes, or until `deadline`: a reload thread may miss that it is asked.
    std::optional<Delivered> ask(const Component& component, const Kind& kind, const std::any& key,
                                 Clock::time_point deadline);
    /// Asks, now and whenever the answer may have become stale.
    void show(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
              const std::any& key = {});

    /// What hands the deliveries of a kind to `receiver`, printed and with their origin. Each is to be entered once for
    /// a delivery: of two for the same the second has lost its origin.
    Delivery taking(const Component& component, const Kind& kind, Receiver receiver);

private:
    struct Shown {
        const Component* component;
        const Kind* kind;
        std::string name;
        Delivery callback;
        std::any key;
    };

    void* object(const char* lookup);
    void tokenChanged(const std::string& token);
    void askAgainSoon();
    void keepUp();

    std::unique_ptr<devicesim::Device> device_;
    std::string deviceUrl_;
    Traffic traffic_;
    ktp::Host host_;

    std::thread upkeep_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Shown> shown_;          // guarded by mutex_
    bool askAgain_ = false;             // guarded by mutex_
    bool stopping_ = false;             // guarded by mutex_
    std::optional<std::string> token_;  // guarded by mutex_: the last answer to a login
};

}  // namespace panel
