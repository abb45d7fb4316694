#include "panel/session.h"

#include <filesystem>
#include <nlohmann/json.hpp>

#include "panel/deliveries.h"
#include "platform/ktp/knownsettings.h"

namespace panel {

namespace {

std::filesystem::path defaultConfigFile() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return program.parent_path().parent_path() / "share" / "lcdpanel" / "lcdpanel.toml";
}

ktp::HostConfig configOf(const SessionOptions& options, const std::string& deviceUrl) {
    auto config = ktp::HostConfig::fromFile(options.configFile.empty() ? defaultConfigFile()
                                                                       : std::filesystem::path(options.configFile));
    config.settings.set(ktp::kDeviceUrl, deviceUrl, "--device: ");
    for (const auto& [setting, value] : options.settings) {
        config.settings.set(*setting, value);
    }
    return config;
}

// The plug-in's threads end the process at an exception, so nothing may leave a delivery. The device's texts pass as
// they came; bytes that are no UTF-8 are replaced, so that the text can be read as JSON.
std::string printed(const Kind& kind, const std::any& payload) {
    using nlohmann::json;
    try {
        const std::string text = kind.print(payload);
        return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
    } catch (const std::bad_any_cast&) {
        return "null";
    }
}

}  // namespace

Session::Session(const SessionOptions& options)
    : device_(options.deviceUrl.empty() ? std::make_unique<devicesim::Device>(options.simulated) : nullptr),
      deviceUrl_(device_ ? device_->url() : options.deviceUrl),
      traffic_([this] { askAgainSoon(); }),
      host_(configOf(options, deviceUrl_)) {
    host_.load();
    for (const Component& each : components()) {
        object(each.lookup.c_str());
    }
    status().observe(&traffic_);
    status().onLoginNeeded([&user = user()] { user.asyncLogin(); });
    user().registerRequestCallBack("panel-session", LCD::MemoryCache::IUser::RequestCBType::TokenChanged,
                                   [this](const std::any& payload) {
                                       tokenChanged(*std::any_cast<const std::shared_ptr<std::string>&>(payload));
                                   });
}

void Session::start() {
    host_.start();
    upkeep_ = std::thread([this] { keepUp(); });
}

void Session::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        shown_.clear();
    }
    changed_.notify_all();
    if (upkeep_.joinable()) {
        upkeep_.join();
    }
    host_.stop();
    device_.reset();
}

void Session::login(std::chrono::milliseconds timeout) {
    const auto deadline = Clock::now() + timeout;
    std::unique_lock lock(mutex_);
    token_.reset();
    lock.unlock();
    user().asyncLogin();
    lock.lock();
    const bool answered = changed_.wait_until(lock, deadline, [this] { return token_.has_value(); });
    if (!answered || token_->empty()) {
        const std::string how = traffic_.lastLogin().how;
        throw Unreachable(deviceUrl_ + ": the login " + (how.empty() ? "was not answered in time" : "failed: " + how));
    }
    lock.unlock();
    // A stream that opens marks the mirrors: what is asked before would be fetched twice.
    const auto follows = [this] {
        const lcdcomm::ReceiverStatus now = status().receiver();
        return now.connected && now.resyncs > 0;
    };
    while (!follows()) {
        if (Clock::now() > deadline) {
            throw Unreachable(deviceUrl_ + ": the stream of reports was not opened in time");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    host_.awaitMessages();
}

// User's reload thread.
void Session::tokenChanged(const std::string& token) {
    if (!token.empty()) {
        traffic_.addOwnToken(token);
    }
    {
        const std::lock_guard lock(mutex_);
        askAgain_ = askAgain_ || (!token.empty() && token_ != token);
        token_ = token;
    }
    changed_.notify_all();
}

// Decoder thread.
void Session::askAgainSoon() {
    {
        const std::lock_guard lock(mutex_);
        askAgain_ = true;
    }
    changed_.notify_all();
}

// Upkeep's thread.
void Session::keepUp() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return stopping_ || askAgain_; });
        if (stopping_) {
            return;
        }
        askAgain_ = false;
        const std::vector<Shown> all = shown_;
        lock.unlock();
        host_.awaitMessages();  // so that the mirrors are marked
        for (const Shown& each : all) {
            get(*each.component, *each.kind, each.name, each.callback, each.key);
        }
        lock.lock();
    }
}

void* Session::object(const char* lookup) {
    void* const component = host_.findComponent(lookup);
    if (component == nullptr) {
        throw std::runtime_error(std::string("no component is bound to the look-up name \"") + lookup +
                                 "\": bind one in the host's file");
    }
    return component;
}

void Session::subscribe(const Component& component, const Kind& kind, const std::string& name,
                        const Delivery& callback) {
    component.subscribe(object(component.lookup.c_str()), name, kind.value, callback);
}

void Session::get(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
                  const std::any& key) {
    component.get(object(component.lookup.c_str()), name, kind.value, callback, key);
}

std::optional<Delivered> Session::ask(const Component& component, const Kind& kind, const std::any& key,
                                      Clock::time_point deadline) {
    constexpr std::chrono::seconds kAskAgain{1};
    const auto answers = std::make_shared<Deliveries>();  // late ones still have a place to go to
    const Delivery callback = taking(component, kind, [answers](Delivered one) { answers->add(std::move(one)); });
    std::optional<Delivered> one;
    do {
        get(component, kind, "ask", callback, key);
        one = answers->next(std::min(deadline, Clock::now() + kAskAgain));
    } while (!one && Clock::now() < deadline);
    return one;
}

void Session::set(const Component& component, const Kind& kind, const std::string& name, int key, const std::any& data,
                  const SetResult& callback) {
    component.set(object(component.lookup.c_str()), name, kind.value, key, data, callback);
}

void Session::show(const Component& component, const Kind& kind, const std::string& name, const Delivery& callback,
                   const std::any& key) {
    {
        const std::lock_guard lock(mutex_);
        shown_.push_back({&component, &kind, name, callback, key});
    }
    get(component, kind, name, callback, key);
}

Delivery Session::taking(const Component& component, const Kind& kind, Receiver receiver) {
    return [this, &component, &kind, receiver = std::move(receiver)](const std::any& payload) {
        receiver({&component, &kind, printed(kind, payload), traffic_.originOf(component), Clock::now()});
    };
}

}  // namespace panel
