// The host runtime: loads plug-ins, creates their components, runs and stops them.
#pragma once

#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ktp/iplatform.h"
#include "platform/ktp/hostconfig.h"
#include "platform/ktp/hosterror.h"
#include "platform/ktp/messagecenter.h"
#include "platform/ktp/pluginlibrary.h"

namespace ktp {

/// One component of a host, for a person.
struct ComponentStatus {
    std::string name;
    std::string lookup;
    std::string plugin;  ///< empty for a component that the program brings
    bool running = false;
};

/// A host of components. A process has one that is loaded at a time, since each plug-in keeps one platform
/// pointer. `load`, `start` and `stop` belong to one thread, which is no component's; the rest is for any
/// thread. After `stop` the host may load anew.
class Host final : public IPlatform {
public:
    explicit Host(HostConfig config) : config_(std::move(config)) {}
    ~Host() { stop(); }

    /// Loads the plug-ins and creates the components; nothing runs yet, so this is when pages subscribe
    /// best. Throws `HostError`, and then nothing is left behind.
    void load();
    /// Sends system run to all components, in their order. Loads first where that hasn't been done. Throws
    /// `HostError` when a component refuses, after having stopped what ran.
    void start();
    /// Stops, deletes and unloads everything in reverse order. Does nothing when nothing is loaded. No thread of
    /// the program's may be inside a component then, and no delivery may be kept: what a thread would return to
    /// and what frees a delivery are unloaded.
    void stop();

    /// The component bound to `lookupName` as its first base `Interface`, or null. Valid until `stop`.
    template <class Interface>
    Interface* find(const char* lookupName) {
        return static_cast<Interface*>(findComponent(lookupName));
    }

    /// Returns when all messages that were posted before have been delivered. Between `start` and `stop`; any thread
    /// but a component's.
    void awaitMessages() { messageCenter_->await(); }

    void* findComponent(const char* lookupName) override;
    std::vector<ComponentStatus> components() const;

private:
    struct Component {
        const ComponentInfo* info;
        void* object;
        IMessageHandler* handler;  // null for a component that takes no messages
        ComponentStatus status;
    };
    struct Row {
        const ComponentInfo* info;
        std::string plugin;
    };

    void claimProcess();
    void loadPlugins();
    void addRows(const std::vector<const ComponentInfo*>& rows, const char* plugin);
    void create(const ComponentConfig& wanted);
    void run(Component& component);
    void bind(const char* lookupName, void* object);
    void setRunning(Component& component, bool running);

    HostConfig config_;
    bool claimed_ = false;  // this host is the process's
    std::vector<PluginLibrary> plugins_;
    std::map<std::string, Row> rows_;
    std::unique_ptr<MessageCenter> messageCenter_;
    bool started_ = false;

    mutable std::mutex mutex_;
    std::list<Component> components_;       // guarded by mutex_
    std::map<std::string, void*> lookups_;  // guarded by mutex_
};

}  // namespace ktp
