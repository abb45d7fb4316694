// The platform as a unit test needs it: everything in one process, everything scripted.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ktp/api.h"
#include "ktp/imessagecenter.h"
#include "lcd/comm/ihttpchannel.h"
#include "lcd/commchannel/autoreport.h"
#include "lcd/memorycache/isequence.h"
#include "lcd/memorycache/iuser.h"
#include "tests/support/waiting.h"

namespace lcdtest {

class FakeMessage final : public ktp::IMessage {
public:
    explicit FakeMessage(std::uint32_t id) : id_(id) {}
    std::uint32_t id() const override { return id_; }

private:
    std::uint32_t id_;
};

/// Records what is posted and checks that each message is released.
class FakeMessageCenter final : public ktp::IMessageCenter {
public:
    struct Posted {
        std::uint32_t id;
        std::string sender;
        int target;
        int flags;
    };

    ktp::IMessage* createMessage(std::uint32_t id, const char* sender, const void*, std::uint32_t,
                                 std::uint32_t) override {
        sender_ = sender;
        ++alive;
        return new FakeMessage(id);
    }
    void releaseMessage(ktp::IMessage* message) override {
        --alive;
        delete static_cast<FakeMessage*>(message);
    }
    void postMessage(ktp::IMessage** message, int target, int flags) override {
        posted.push_back({(*message)->id(), sender_, target, flags});
    }

    std::vector<Posted> posted;
    int alive = 0;

private:
    std::string sender_;
};

/// Answers from a script and records what was asked.
class FakeChannel final : public LCD::Comm::IHttpChannel {
public:
    struct Call {
        std::string verb;
        std::string path;
        bool hasQuery = false;
        LCD::Comm::QueryPairs query;
        bool hasHeaders = false;
        bool hasBody = false;
        std::string body;
        int tag = 0;
    };
    struct Answer {
        bool arrives = true;
        std::uint16_t status = 200;
        std::string body = R"({"code":0,"message":""})";
    };

    /// What `path` answers from now on.
    void answer(const std::string& path, Answer what) {
        monitor_.change([&] { answers_[path] = std::move(what); });
    }
    void answer(const std::string& path, std::string body) { answer(path, Answer{true, 200, std::move(body)}); }
    /// Requests wait until `release` is called.
    void hold() {
        monitor_.change([&] { held_ = true; });
    }
    void release() {
        monitor_.change([&] { held_ = false; });
    }
    bool waitForCalls(std::size_t count) const {
        return monitor_.waitUntil([&] { return calls_.size() >= count; });
    }
    std::vector<Call> calls() const {
        return monitor_.read([&] { return calls_; });
    }
    /// The last one that wasn't a fetch: those come from their own thread at any time.
    Call lastChange() const {
        return monitor_.read([&] {
            const auto last =
                std::find_if(calls_.rbegin(), calls_.rend(), [](const Call& call) { return call.verb != "GET"; });
            return last == calls_.rend() ? Call{} : *last;
        });
    }
    std::string token() const {
        return monitor_.read([&] { return token_; });
    }
    int timeoutMs() const {
        return monitor_.read([&] { return timeoutMs_; });
    }

    std::string baseUrl() const override { return "http://device"; }
    void setTimeoutMs(int milliseconds) override {
        monitor_.change([&] { timeoutMs_ = milliseconds; });
    }
    void setToken(const std::string& token) override {
        monitor_.change([&] { token_ = token; });
    }
    bool sendPostRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                         const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                         std::string* response, int tag) override {
        return send("POST", path, query, headers, body, status, response, tag);
    }
    bool sendPutRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                        const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                        std::string* response, int tag) override {
        return send("PUT", path, query, headers, body, status, response, tag);
    }
    bool sendGetRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                        const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                        std::string* response, int tag) override {
        return send("GET", path, query, headers, body, status, response, tag);
    }
    bool sendDeleteRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                           const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                           std::string* response, int tag) override {
        return send("DELETE", path, query, headers, body, status, response, tag);
    }
    std::shared_ptr<LCD::Comm::FormData> createFormData() override { return nullptr; }

private:
    bool send(const char* verb, const std::string& path, const LCD::Comm::QueryPairs* query,
              const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
              std::string* response, int tag) {
        Answer answer;
        monitor_.change([&] {
            calls_.push_back({verb, path, query != nullptr, query != nullptr ? *query : LCD::Comm::QueryPairs{},
                              headers != nullptr, body != nullptr, body != nullptr ? *body : std::string(), tag});
        });
        monitor_.waitUntil([&] { return !held_; });
        monitor_.change([&] {
            if (const auto found = answers_.find(path); found != answers_.end()) {
                answer = found->second;
            }
        });
        *status = answer.arrives ? answer.status : std::uint16_t{0};
        *response = answer.arrives ? answer.body : std::string();
        return answer.arrives;
    }

    Monitor monitor_;
    std::vector<Call> calls_;
    std::map<std::string, Answer> answers_;
    std::string token_;
    int timeoutMs_ = 0;
    bool held_ = false;
};

class FakeReceiver final : public LCD::CommChannel::IAutoReportReceiver {
public:
    void registerDecodeCallback(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) override {
        callbacks_.emplace(reportId, std::move(callback));
    }
    /// Calls the decoders of an id in the caller's thread; what they returned.
    std::vector<bool> push(std::uint32_t reportId, const std::string& body,
                           const LCD::CommChannel::AutoReportSource& source = {}) {
        std::vector<bool> results;
        const auto [first, last] = callbacks_.equal_range(reportId);
        for (auto each = first; each != last; ++each) {
            results.push_back(each->second(body, source));
        }
        return results;
    }

private:
    std::multimap<std::uint32_t, LCD::CommChannel::DecodeCallback> callbacks_;
};

/// The platform pointer of this process while it lives, with the three fakes behind their usual names.
class FakePlatform final : public ktp::IPlatform {
public:
    FakePlatform() {
        bind(LCD::Comm::OBJ_COMM_HTTPCHANNEL_NAME, &channel);
        bind(LCD::CommChannel::OBJ_COMMCHANNEL_AUTOREPORTRECEIVER_NAME, &receiver);
        bind(ktp::kMessageCenterName, &messages);
        ktp::api::get().platform = this;
    }
    ~FakePlatform() { ktp::api::get().platform = nullptr; }

    /// `component` is given as its first base.
    void bind(const std::string& lookupName, void* component) { components_[lookupName] = component; }
    void* findComponent(const char* lookupName) override {
        const auto found = components_.find(lookupName);
        return found == components_.end() ? nullptr : found->second;
    }

    FakeChannel channel;
    FakeReceiver receiver;
    FakeMessageCenter messages;

private:
    std::map<std::string, void*> components_;
};

/// Says what the session's token is.
class FakeUser final : public LCD::MemoryCache::IUser {
public:
    explicit FakeUser(std::string token) : token_(std::move(token)) {}
    void registerRequestCallBack(const std::string&, RequestCBType, const std::function<void(std::any)>&) override {}
    void asyncLogin() override {}
    std::string token() override { return token_; }
    void clearToken() override {}

private:
    std::string token_;
};

/// The book of numbers without its timer.
class FakeSequence final : public LCD::MemoryCache::ISequence {
public:
    void intert(unsigned int id, const std::string& requestName) override {
        const std::lock_guard lock(mutex_);
        entries_[id] = {++drawn_, requestName};
    }
    int getSeq(unsigned int id) override {
        const std::lock_guard lock(mutex_);
        return entries_[id].first;
    }
    std::string getRequestName(unsigned int id) override {
        const std::lock_guard lock(mutex_);
        return entries_[id].second;
    }

private:
    std::mutex mutex_;
    int drawn_ = 0;
    std::map<unsigned int, std::pair<int, std::string>> entries_;
};

/// A component under test, started and stopped as the platform does it.
template <class Component>
class Running {
public:
    Running() { send(ktp::kSystemRun); }
    ~Running() { stop(); }
    void stop() { send(ktp::kSystemStop); }
    void send(std::uint32_t id) {
        const FakeMessage message(id);
        component_.handleMessage(&message);
    }
    Component* operator->() { return &component_; }
    Component& operator*() { return component_; }

private:
    Component component_;
};

}  // namespace lcdtest
