#include "platform/ktp/host.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>

#include "kt/log.h"
#include "platform/ktp/hostmessages.h"

namespace ktp {

namespace {

std::atomic<bool> processTaken = false;

}  // namespace

void Host::load() {
    if (claimed_) {
        return;
    }
    config_.check();
    claimProcess();
    try {
        messageCenter_ = std::make_unique<MessageCenter>();
        bind(kMessageCenterName, static_cast<IMessageCenter*>(messageCenter_.get()));
        bind(kSettingsName, static_cast<ISettings*>(&config_.settings));
        loadPlugins();
        for (const ComponentConfig& wanted : config_.components) {
            create(wanted);
        }
    } catch (...) {
        stop();
        throw;
    }
}

void Host::start() {
    load();
    if (started_) {
        return;
    }
    started_ = true;
    messageCenter_->start();
    try {
        for (Component& component : components_) {
            run(component);
        }
    } catch (...) {
        stop();
        throw;
    }
}

void Host::stop() {
    if (!claimed_) {
        return;
    }
    if (started_) {
        messageCenter_->tellAll(kStopAhead);
        std::for_each(components_.rbegin(), components_.rend(), [this](Component& component) {
            if (component.status.running && component.handler != nullptr) {
                messageCenter_->stop(*component.handler);
            }
            setRunning(component, false);
        });
        messageCenter_->stop();
        started_ = false;
    }
    {
        const std::lock_guard lock(mutex_);
        lookups_.clear();
    }
    while (!components_.empty()) {
        const Component last = components_.back();
        last.info->deletor(last.object);
        const std::lock_guard lock(mutex_);
        components_.pop_back();
    }
    messageCenter_.reset();
    rows_.clear();
    while (!plugins_.empty()) {
        plugins_.pop_back();
    }
    claimed_ = false;
    processTaken = false;
}

std::vector<ComponentStatus> Host::components() const {
    const std::lock_guard lock(mutex_);
    std::vector<ComponentStatus> statuses;
    for (const Component& component : components_) {
        statuses.push_back(component.status);
    }
    return statuses;
}

// Any thread.
void* Host::findComponent(const char* lookupName) {
    const std::lock_guard lock(mutex_);
    const auto found = lookups_.find(lookupName);
    return found == lookups_.end() ? nullptr : found->second;
}

void Host::claimProcess() {
    if (processTaken.exchange(true)) {
        throw HostError("another host is loaded in this process, stop it first");
    }
    claimed_ = true;
}

void Host::loadPlugins() {
    addRows(config_.ownComponents, "");
    for (const PluginConfig& plugin : config_.plugins) {
        plugins_.emplace_back(plugin, *this);
        addRows(plugins_.back().components(), plugins_.back().name());
    }
}

void Host::addRows(const std::vector<const ComponentInfo*>& rows, const char* plugin) {
    for (const ComponentInfo* row : rows) {
        const auto [first, fresh] = rows_.emplace(row->name, Row{row, plugin});
        if (!fresh) {
            throw HostError(fmt::format("plugins: both \"{}\" and \"{}\" have a component \"{}\", load one",
                                        first->second.plugin, plugin, row->name));
        }
    }
}

void Host::create(const ComponentConfig& wanted) {
    const auto row = rows_.find(wanted.name);
    if (row == rows_.end()) {
        throw HostError(
            fmt::format("{}component.name: no plug-in has a component \"{}\", correct the name or add "
                        "its plug-in to plugins",
                        wanted.place, wanted.name));
    }
    const ComponentInfo* info = row->second.info;
    void* object = nullptr;
    std::string reason = "no memory";
    try {
        object = info->creator();
    } catch (const std::exception& error) {
        reason = error.what();
    }
    if (object == nullptr) {
        throw HostError(fmt::format("{}component \"{}\" can't be created: {}", wanted.place, wanted.name, reason));
    }
    {
        const std::lock_guard lock(mutex_);
        components_.push_back({info, object, info->getMessageHandler(object),
                               ComponentStatus{wanted.name, wanted.lookup, row->second.plugin, false}});
    }
    if (!wanted.lookup.empty()) {
        bind(wanted.lookup.c_str(), object);
    }
}

void Host::run(Component& component) {
    setRunning(component, true);
    const std::string problem = component.handler == nullptr ? "" : messageCenter_->run(*component.handler);
    if (!problem.empty()) {
        throw HostError(fmt::format("component \"{}\" doesn't start: {}", component.status.name, problem));
    }
}

void Host::bind(const char* lookupName, void* object) {
    const std::lock_guard lock(mutex_);
    lookups_[lookupName] = object;
}

void Host::setRunning(Component& component, bool running) {
    const std::lock_guard lock(mutex_);
    component.status.running = running;
}

}  // namespace ktp
