// The base of every getter.
//
// One getter owns one mirror: a typed copy of a part of the device's state. What follows holds for all of them.
//
// Snapshots. A subscriber never sees the mirror. It is handed a std::any that holds a std::shared_ptr to a
// copy made for this delivery. All subscribers of one delivery share that copy, may keep it without a lock
// and must not change it.
//
// Order. A request waits in the queue until the reload thread takes it. The thread reloads if the mirror is
// dirty and a request was posted since it last looked, then it delivers, then it pauses for 5 ms: one
// component serves at most 200 deliveries a second. Requests that were queued together share one reload.
// Every request is served; none are merged. A request that is posted in the moment in which the thread goes
// to sleep waits for the next one to wake it.
//
// Reports. A report is merged into the mirror in the receiver's thread and then posted like a request of
// nobody, so that its delivery is made by the reload thread, after those that were queued before it, and
// shows the mirror as it is by then: of two reports in quick succession the first delivery may already show the second.
//
// Failures. A fetch that fails is logged and not repeated. The mirror keeps what it held and stays dirty, the
// delivery is made all the same, and the next request fetches again.
//
// Threads. Callers subscribe and post. The platform's thread starts, stops and marks the mirror dirty. The
// receiver's thread decodes. The reload thread fetches, copies and delivers, and holds the mirror's lock for
// each of these. A subscriber therefore must not wait for the thread that calls it, nor call a synchronous
// accessor of any component (IUser::token() and its like) from a callback: the locks of two mirrors would
// then be taken in both orders.
#pragma once

#include <any>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include "kt/log.h"
#include "ktp/api.h"
#include "lcd/comm/ihttpchannel.h"
#include "lcd/commchannel/autoreport.h"
#include "lcdmemorycacheimpl/engine/mutex.h"
#include "lcdmemorycacheimpl/engine/pause.h"
#include "lcdprotocolimpl/core/report.h"

namespace LCD::MemoryCacheImpl {

/// The key that means all members, where keys are numbers.
template <class K>
K allMembers() {
    if constexpr (std::is_same_v<K, int>) {
        return -1;
    } else {
        return K{};
    }
}

/// What follows a report beside the merge.
enum class AfterReport {
    tellWhenDecoded,     ///< all subscribers are told, of a report that could be read
    tellAlways,          ///< they are told of the old value, too, when it couldn't
    dirtyUnlessDecoded,  ///< a report that can't be read makes the next request fetch, one that can makes the mirror
                         ///< clean
};

/// `T` is the mirror's type, `K` the type of the key that a request carries, `CB` the interface's RequestCBType.
template <class T, class K, class CB>
class ObjectCacheImpl {
public:
    /// One queued request.
    struct RequestData {
        std::string name;  ///< the subscriber; empty means all
        CB type{};
        K key = allMembers<K>();
        std::any data;                           ///< for the handler, for example what a report carried
        std::function<void(std::any)> callback;  ///< when set, the reply goes there alone
    };

    ObjectCacheImpl() = default;
    ObjectCacheImpl(const ObjectCacheImpl&) = delete;
    ObjectCacheImpl& operator=(const ObjectCacheImpl&) = delete;
    /// The stop message must have been handled: a thread that still runs ends the process.
    virtual ~ObjectCacheImpl() = default;

    /// Platform's thread, once, before the reload thread starts. An override repeats these steps and looks up more.
    virtual void onSystemRunHandle() {
        httpChannel = ktp::api::get().find<Comm::IHttpChannel>(Comm::OBJ_COMM_HTTPCHANNEL_NAME);
        reportReceiver = ktp::api::get().find<CommChannel::IAutoReportReceiver>(
            CommChannel::OBJ_COMMCHANNEL_AUTOREPORTRECEIVER_NAME);
        registerReportDecodeCallback();
        registerNotifySubCacheCallback();
    }
    /// Any thread.
    virtual void setCacheDirty() { cacheDirty = true; }
    /// Reload thread. The last word on `cacheDirty` before the thread decides whether to fetch.
    virtual void checkCacheDirtied(const RequestData& /*request*/) {}
    /// Reload thread. Fetches; lowers `cacheDirty` when that succeeded.
    virtual void reloadCache(const RequestData& request) = 0;
    /// Reload thread. Runs the handler of the request's type, if there is one.
    virtual void notifyCacheChanged(const RequestData& request) {
        if (const auto handler = subCacheCallbacks.find(request.type); handler != subCacheCallbacks.end()) {
            handler->second(request);
        }
    }
    /// The label in log lines.
    virtual std::string objectTypeName() const = 0;
    /// Fills `subCacheCallbacks`.
    virtual void registerNotifySubCacheCallback() = 0;
    /// Binds report ids to decoders.
    virtual void registerReportDecodeCallback() {}

    /// Subscribes. The caller's thread; takes no lock, since pages subscribe before the first post.
    void appendRequestCallBack(const std::string& name, CB type, std::function<void(std::any)> callback) {
        auto& entries = requestCallbacks[name];
        for (const auto& entry : entries) {
            if (entry.first == type) {
                KT_WARN("Memory Cache {0} {1} {2} Callback is register.", objectTypeName(), name, number(type));
                return;
            }
        }
        entries.emplace_back(type, std::move(callback));
    }

    /// Posts a request. Any thread, with or without the mirror's lock.
    void notifyCacheChanged(const std::string& name, CB type, K key = allMembers<K>(), std::any data = {}) {
        post({name, type, std::move(key), std::move(data), {}});
    }
    /// Posts a request that `callback` alone is told of. Any thread.
    void notifyCacheChangedWithLambda(const std::string& name, CB type, std::function<void(std::any)> callback,
                                      K key = allMembers<K>()) {
        post({name, type, std::move(key), {}, std::move(callback)});
    }

    /// What the start and the stop message do. Platform's thread.
    void startReloadTask() {
        cacheDirty = true;
        stopFlag = false;
        reloadThread = std::thread(&ObjectCacheImpl::reloadCacheTask, this);
    }
    void stopReloadTask() {
        if (!reloadThread.joinable()) {
            return;
        }
        {
            LockGuard lock(wakeMutex);
            stopFlag = true;
            wakeFlag = true;
            wakeCondition.notifyAll();
        }
        reloadThread.join();
    }

    /// The body of the reload thread.
    void reloadCacheTask() {
        KT_INFO("Memory Cache Reload {0} task starting", objectTypeName());
        while (!stopFlag) {
            waitForPost();
            if (stopFlag) {
                break;
            }
            drainQueue();
        }
        KT_INFO("Memory Cache Reload {0} task stoped", objectTypeName());
    }

protected:
    /// Delivers a fresh copy of `value` to whom the request is for. Reload thread, with the mirror's lock held.
    template <class U>
    void notifySubCacheChanged(const U& value, const RequestData& request) {
        deliver(std::any(std::make_shared<U>(value)), request);
    }

    /// Delivers what is already packed. As above.
    void deliver(const std::any& payload, const RequestData& request) {
        if (request.callback) {
            request.callback(payload);
            return;
        }
        for (const auto& [name, entries] : requestCallbacks) {
            if (!request.name.empty() && request.name != name) {
                continue;
            }
            for (const auto& [type, callback] : entries) {
                if (type == request.type) {
                    callback(payload);
                    break;
                }
            }
        }
    }

    // ---- what a getter states in one line each

    /// Binds a decoder `bool decodeX(const std::string& body)`, with or without the report's source.
    template <class Getter>
    void bindReport(std::uint32_t reportId, bool (Getter::*decode)(const std::string&)) {
        bind(reportId, [self = static_cast<Getter*>(this), decode](const auto& body, const auto&) {
            return (self->*decode)(body);
        });
    }
    template <class Getter>
    void bindReport(std::uint32_t reportId,
                    bool (Getter::*decode)(const std::string&, const CommChannel::AutoReportSource&)) {
        bind(reportId, [self = static_cast<Getter*>(this), decode](const auto& body, const auto& source) {
            return (self->*decode)(body, source);
        });
    }

    /// Enters the handler of a type.
    template <class Getter>
    void bindHandler(CB type, void (Getter::*notify)(const RequestData&)) {
        subCacheCallbacks[type] = [self = static_cast<Getter*>(this), notify](const RequestData& request) {
            (self->*notify)(request);
        };
    }

    /// Reload thread. Fetches the whole mirror. A failure logs `warning`, where there is one, and leaves the mirror
    /// dirty, even if a report has meanwhile made it clean.
    void fetchCache(bool (*fetch)(Comm::IHttpChannel*, T&), const char* warning = nullptr,
                    KT::LogSite site = KT::LogSite::here()) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        const bool fetched = fetch(httpChannel, cache);
        cacheDirty = !fetched;
        if (!fetched && warning != nullptr) {
            KT::log(spdlog::level::warn, site, fmt::runtime(warning));
        }
    }

    /// Receiver thread. Fetches the whole mirror because of a report and tells all subscribers of `type`. A
    /// failure logs `warning`.
    bool refetchCache(bool (*fetch)(Comm::IHttpChannel*, T&), CB type, const char* warning,
                      KT::LogSite site = KT::LogSite::here()) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        const bool fetched = fetch(httpChannel, cache);
        if (fetched) {
            notifyCacheChanged({}, type);
        } else {
            KT::log(spdlog::level::warn, site, fmt::runtime(warning));
        }
        return fetched;
    }

    /// Receiver thread. Decodes a report; what could be decoded is merged by `merge(mirror, report)` under the lock and
    /// told to all subscribers of `type`.
    template <class Report, class Merge>
    bool mergeReport(const std::string& body, bool (*decode)(const std::string&, Report&), Merge merge, CB type,
                     AfterReport after = AfterReport::tellWhenDecoded) LCD_EXCLUDES(cacheMutex) {
        Report report;
        const bool decoded = decode(body, report);
        mergeDecoded(decoded, report, merge, type, after);
        return decoded;
    }
    /// The same for a report without a decoder of its own, which logs as "decode SUBJECT has failed".
    template <class Report, class Merge>
    bool mergeReport(const std::string& body, const char* subject, Merge merge, CB type,
                     AfterReport after = AfterReport::tellWhenDecoded, KT::LogSite site = KT::LogSite::here())
        LCD_EXCLUDES(cacheMutex) {
        Report report;
        const bool decoded = ProtocolImpl::decodeReport(body, report, subject, site);
        mergeDecoded(decoded, report, merge, type, after);
        return decoded;
    }

    /// Reload thread. Delivers the mirror, a part of it, or a field of the getter itself.
    void deliverCache(const RequestData& request) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        notifySubCacheChanged(cache, request);
    }
    /// `part` is a member of the mirror's type or a function of the mirror.
    template <class Part>
    void deliverPart(Part part, const RequestData& request) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        notifySubCacheChanged(std::invoke(part, std::as_const(cache)), request);
    }
    template <class Getter, class U>
    void deliverField(U Getter::*field, const RequestData& request) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        notifySubCacheChanged(static_cast<Getter*>(this)->*field, request);
    }

    /// Any thread. Delivers what the request itself carries, where it carries anything.
    void deliverData(const RequestData& request) LCD_EXCLUDES(cacheMutex) {
        LockGuard lock(cacheMutex);
        if (request.data.has_value()) {
            deliver(request.data, request);
        }
    }

private:
    static std::int32_t number(CB type) { return static_cast<std::int32_t>(type); }

    void bind(std::uint32_t reportId, CommChannel::DecodeCallback callback) {
        if (reportReceiver != nullptr) {
            reportReceiver->registerDecodeCallback(reportId, std::move(callback));
        }
    }

    template <class Report, class Merge>
    void mergeDecoded(bool decoded, const Report& report, Merge merge, CB type, AfterReport after) {
        LockGuard lock(cacheMutex);
        if (decoded) {
            merge(cache, report);
        }
        if (decoded || after == AfterReport::tellAlways) {
            notifyCacheChanged({}, type);
        }
        if (after == AfterReport::dirtyUnlessDecoded) {
            cacheDirty = !decoded;
        }
    }

    void post(RequestData request) {
        {
            LockGuard lock(queueMutex);
            requestQueue.push_back(std::move(request));
        }
        LockGuard lock(wakeMutex);
        wakeFlag = true;
        wakeCondition.notifyAll();
    }

    // ---- reload thread

    void waitForPost() LCD_EXCLUDES(wakeMutex) {
        LockGuard lock(wakeMutex);
        while (!wakeFlag) {
            wakeCondition.wait(wakeMutex);
        }
    }

    /// Serves until the queue is found empty; a stop is not looked at meanwhile.
    void drainQueue() {
        RequestData request;
        while (takeRequest(request)) {
            checkCacheDirtied(request);
            if (cacheDirty && wakeFlag) {
                reloadCache(request);
            }
            wakeFlag = false;
            notifyCacheChanged(request);
            pauseFor({0, 5'000'000});
        }
        wakeFlag = false;
    }

    bool takeRequest(RequestData& out) LCD_EXCLUDES(queueMutex) {
        LockGuard lock(queueMutex);
        if (requestQueue.empty()) {
            return false;
        }
        out = std::move(requestQueue.front());
        requestQueue.pop_front();
        return true;
    }

protected:
    // guards the mirror and the getter's own data; held across the fetch and across deliveries
    RecursiveMutex cacheMutex;
    T cache LCD_GUARDED_BY(cacheMutex){};
    // any thread
    std::atomic<bool> cacheDirty{false};
    std::atomic<bool> wholeCacheLoaded{false};
    // fixed after start
    std::map<CB, std::function<void(const RequestData&)>> subCacheCallbacks;
    Comm::IHttpChannel* httpChannel = nullptr;
    CommChannel::IAutoReportReceiver* reportReceiver = nullptr;
    // platform's thread
    std::thread reloadThread;
    // any thread
    std::atomic<bool> stopFlag{false};
    // the thread's sleep; the thread itself lowers the flag without the mutex
    Mutex wakeMutex;
    ConditionVariable wakeCondition;
    std::atomic<bool> wakeFlag{false};
    // written before the first post, then read under cacheMutex
    std::map<std::string, std::list<std::pair<CB, std::function<void(std::any)>>>> requestCallbacks;
    // any thread
    RecursiveMutex queueMutex;
    std::deque<RequestData> requestQueue LCD_GUARDED_BY(queueMutex);
};

/// A merge that copies one member of a report over the same member of the mirror.
template <class T, class U>
auto copyMember(U T::*member) {
    return [member](T& cache, const T& report) { cache.*member = report.*member; };
}

}  // namespace LCD::MemoryCacheImpl
