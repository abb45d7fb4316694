// The base of every setter.
//
// A setter takes the user's changes off the caller's thread and sends them to the device one at a time. While
// one request runs, further changes pile up in a list. When it returns, the sampling thread takes the whole
// list, and of each run of adjacent changes of one type and key it sends the last alone: a fader that is
// dragged costs one request at a time, and what is sent is the newest. The pace is the device's own.
//
// A setter writes no mirror. The new state comes back by the report that the device pushes, or by the next fetch.
#pragma once

#include <any>
#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "kt/log.h"
#include "ktp/api.h"
#include "lcd/comm/ihttpchannel.h"
#include "lcdmemorycacheimpl/engine/mutex.h"
#include "lcdmemorycacheimpl/engine/typename.h"

namespace LCD::MemoryCacheImpl {

/// `K` is the type of the key that a change carries, `CB` the interface's RequestCBType.
template <class K, class CB>
class ObjectSamplingImpl {
public:
    /// One queued change.
    struct RequestData {
        std::string name;  ///< the requester
        CB type{};
        K key{};                             ///< has no meaning in a component whose changes have no key
        std::any data;                       ///< a std::shared_ptr to the record that the handler expects
        std::function<void(bool)> callback;  ///< told whether the device took it; may be empty
    };

    ObjectSamplingImpl() = default;
    ObjectSamplingImpl(const ObjectSamplingImpl&) = delete;
    ObjectSamplingImpl& operator=(const ObjectSamplingImpl&) = delete;
    /// The stop message must have been handled: a thread that still runs ends the process.
    virtual ~ObjectSamplingImpl() = default;

    /// Platform's thread, once, before the sampling thread starts.
    virtual void onSystemRunHandle() {
        httpChannel = ktp::api::get().find<Comm::IHttpChannel>(Comm::OBJ_COMM_HTTPCHANNEL_NAME);
        registerSetSubDataCallback();
    }
    /// Not consulted.
    virtual bool isAllowSampling(CB /*type*/) { return true; }
    /// Sampling thread. Merges the changes at the head of `list` into `current`, as long as they are for the
    /// same item. The callback of a change that is merged away is dropped.
    virtual void requestDataSampling(std::list<RequestData>& list, RequestData& current) {
        while (!list.empty() && list.front().type == current.type && list.front().key == current.key) {
            RequestData& next = list.front();
            current.name = std::move(next.name);
            current.data = std::move(next.data);
            current.callback = std::move(next.callback);
            list.pop_front();
        }
    }
    /// The label in log lines.
    virtual std::string objectTypeName() const = 0;
    /// Fills `setSubDataCallbacks`.
    virtual void registerSetSubDataCallback() = 0;

    /// Queues a change. Any thread; never waits for the device.
    void asyncSetSubData(RequestData request) LCD_EXCLUDES(requestMutex) {
        {
            LockGuard lock(requestMutex);
            requestList.push_back(std::move(request));
        }
        LockGuard lock(requestMutex);
        requestCondition.notifyAll();
    }

    /// What the start and the stop message do. Platform's thread.
    void startSamplingTask() {
        stopFlag = false;
        samplingThread = std::thread(&ObjectSamplingImpl::samplingTask, this);
    }
    void stopSamplingTask() {
        if (!samplingThread.joinable()) {
            return;
        }
        {
            LockGuard lock(requestMutex);
            stopFlag = true;
            requestCondition.notifyAll();
        }
        samplingThread.join();
    }

    /// The body of the sampling thread.
    void samplingTask() {
        KT_INFO("{0} sampling task starting", objectTypeName());
        std::list<RequestData> taken;
        while (takeRequests(taken)) {
            while (!taken.empty()) {
                RequestData current = std::move(taken.front());
                taken.pop_front();
                requestDataSampling(taken, current);
                serve(current);
            }
        }
        KT_INFO("{0} sampling task stoped", objectTypeName());
    }

protected:
    // ---- what a setter states in one line each

    /// Enters the handler of a type.
    template <class Setter>
    void bindHandler(CB type, bool (Setter::*set)(const RequestData&)) {
        setSubDataCallbacks[type] = [self = static_cast<Setter*>(this), set](const RequestData& request) {
            return (self->*set)(request);
        };
    }

    /// The pointer to a `Record` that a change carries, or null, with a log line that names the type as `typeName`,
    /// when it carries something else.
    template <class Record>
    static const std::shared_ptr<Record>* heldRecord(const RequestData& request, const char* typeName,
                                                     KT::LogSite site = KT::LogSite::here()) {
        const auto* const held = std::any_cast<std::shared_ptr<Record>>(&request.data);
        if (held == nullptr) {
            KT::log(spdlog::level::warn, site, "need type is {1} but has {0}", heldTypeName(request.data), typeName);
        }
        return held;
    }
    /// The record itself, or null, with a log line, also for a null pointer.
    template <class Record>
    static std::shared_ptr<Record> recordOf(const RequestData& request, const char* typeName,
                                            const char* nullText = "val_ is null",
                                            KT::LogSite site = KT::LogSite::here()) {
        const auto* const held = heldRecord<Record>(request, typeName, site);
        if (held == nullptr) {
            return nullptr;
        }
        if (*held == nullptr) {
            KT::log(spdlog::level::warn, site, fmt::runtime(nullText));
        }
        return *held;
    }

    /// Sends the record that a change carries.
    template <class Record>
    bool sendRecord(const RequestData& request, const char* typeName,
                    bool (*send)(Comm::IHttpChannel*, std::shared_ptr<Record>), const char* nullText = "val_ is null",
                    KT::LogSite site = KT::LogSite::here()) {
        const auto record = recordOf<Record>(request, typeName, nullText, site);
        return record != nullptr && send(httpChannel, record);
    }
    /// The same, but the request function itself judges a null pointer.
    template <class Record>
    bool sendRecordOrNull(const RequestData& request, const char* typeName,
                          bool (*send)(Comm::IHttpChannel*, std::shared_ptr<Record>),
                          KT::LogSite site = KT::LogSite::here()) {
        const auto* const held = heldRecord<Record>(request, typeName, site);
        return held != nullptr && send(httpChannel, *held);
    }

    // fixed after start
    std::map<CB, std::function<bool(const RequestData&)>> setSubDataCallbacks;
    Comm::IHttpChannel* httpChannel = nullptr;

    // platform's thread
    std::thread samplingThread;
    // any thread
    std::atomic<bool> stopFlag{false};
    Mutex requestMutex;
    ConditionVariable requestCondition;
    std::list<RequestData> requestList LCD_GUARDED_BY(requestMutex);

public:
    /// Called when a handler returns false, if the shell has set it. Set before the thread starts.
    std::function<void(const std::string&, CB, K)> setFailedCallback;

private:
    /// Waits for changes and takes them all. False when the thread is to end; what is queued then is never sent.
    bool takeRequests(std::list<RequestData>& out) LCD_EXCLUDES(requestMutex) {
        LockGuard lock(requestMutex);
        while (!stopFlag && requestList.empty()) {
            requestCondition.wait(requestMutex);
        }
        if (stopFlag) {
            return false;
        }
        out.swap(requestList);
        return true;
    }

    void serve(const RequestData& request) {
        const auto handler = setSubDataCallbacks.find(request.type);
        if (handler == setSubDataCallbacks.end()) {
            KT_WARN("{0} sampling task Request Type={1} is not callback", objectTypeName(),
                    static_cast<std::int32_t>(request.type));
            return;
        }
        const bool ok = handler->second(request);
        if (!ok && setFailedCallback) {
            setFailedCallback(std::string(), request.type, request.key);
        }
        if (request.callback) {
            request.callback(ok);
        }
    }
};

}  // namespace LCD::MemoryCacheImpl
