// A host with the plug-in in it, and a device to talk to.
#pragma once

#include <memory>
#include <string>

#include "devicesim/devicesim.h"
#include "lcd/memorycache/iuser.h"
#include "panel/kind.h"
#include "platform/ktp/host.h"
#include "platform/lcdcomm/icommstatus.h"

namespace panel {

struct SessionOptions {
    std::string deviceUrl = {};   ///< empty: a simulated device inside this program
    std::string configFile = {};  ///< empty: the one beside this program
};

/// Loaded from construction, so that subscribers can be entered; runs from `start` to `stop`. Belongs to one thread.
class Session {
public:
    /// Raises std::runtime_error with one line for a person.
    explicit Session(const SessionOptions& options);
    ~Session() { stop(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void start() { host_.start(); }
    void stop();

    const std::string& deviceUrl() const { return deviceUrl_; }
    LCD::MemoryCache::IUser& user() { return found<LCD::MemoryCache::IUser>("lcdMemoryCacheUser"); }
    const lcdcomm::ICommStatus& status() { return found<lcdcomm::ICommStatus>(lcdcomm::kCommStatusName); }

    void subscribe(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback);
    void get(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
             int key = -1);
    void set(const Component& component, const Kind& kind, const std::string& name, int key, const std::any& data,
             const SetResult& callback);

private:
    void* object(const char* lookup);
    template <class Interface>
    Interface& found(const char* lookup) {
        return *static_cast<Interface*>(object(lookup));
    }

    std::unique_ptr<devicesim::Device> device_;
    std::string deviceUrl_;
    ktp::Host host_;
};

}  // namespace panel
