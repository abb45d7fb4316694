// The two engines and the path of a report beside a bare hand-over from one thread to another.
#include <sched.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "bench/latency.h"
#include "bench/results.h"
#include "lcdmemorycacheimpl/screen/switchmode.h"
#include "platform/lcdcomm/decoders.h"
#include "tests/support/fakes.h"

namespace bench {

namespace {

using CB = LCD::MemoryCache::ISwitchMode::RequestCBType;
using LCD::ProtocolImpl::s_SwitchMode;

constexpr std::uint32_t kSwitchModeReport = 0x71201;

/// Answers all at once and tells of each change.
class Channel final : public LCD::Comm::IHttpChannel {
public:
    explicit Channel(Moment& changed) : changed_(changed) {}

    std::string baseUrl() const override { return "http://device"; }
    void setTimeoutMs(int) override {}
    void setToken(const std::string&) override {}
    bool sendGetRequest(const std::string&, const LCD::Comm::QueryPairs*, const LCD::Comm::HeaderPairs*,
                        const std::string*, std::uint16_t* status, std::string* response, int) override {
        return answer(status, response);
    }
    bool sendPutRequest(const std::string&, const LCD::Comm::QueryPairs*, const LCD::Comm::HeaderPairs*,
                        const std::string*, std::uint16_t* status, std::string* response, int) override {
        changed_.reach();
        return answer(status, response);
    }
    bool sendPostRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                         const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                         std::string* response, int tag) override {
        return sendPutRequest(path, query, headers, body, status, response, tag);
    }
    bool sendDeleteRequest(const std::string&, const LCD::Comm::QueryPairs*, const LCD::Comm::HeaderPairs*,
                           const std::string*, std::uint16_t*, std::string*, int) override {
        return false;
    }
    std::shared_ptr<LCD::Comm::FormData> createFormData() override { return nullptr; }

private:
    static bool answer(std::uint16_t* status, std::string* response) {
        *status = 200;
        *response = R"({"code":0,"message":"","data":{"enable":1}})";
        return true;
    }
    Moment& changed_;
};

/// The least that a hand-over takes: a mutex, a condition variable and a copy of the payload.
class HandOver {
public:
    explicit HandOver(std::function<void(std::shared_ptr<s_SwitchMode>)> deliver)
        : thread_([this, deliver = std::move(deliver)] {
              std::unique_lock lock(mutex_);
              for (;;) {
                  changed_.wait(lock, [this] { return waiting_ || ended_; });
                  if (ended_) {
                      return;
                  }
                  waiting_ = false;
                  deliver(std::make_shared<s_SwitchMode>(payload_));
              }
          }) {}
    ~HandOver() { change(ended_); }
    void post() { change(waiting_); }

private:
    void change(bool& flag) {
        {
            const std::lock_guard lock(mutex_);
            flag = true;
        }
        changed_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool waiting_ = false;
    bool ended_ = false;
    s_SwitchMode payload_;
    std::jthread thread_;
};

/// The decoders' thread of the real receiver, without the stream before it.
class Receiver final : public LCD::CommChannel::IAutoReportReceiver {
public:
    ~Receiver() override { decoders_.stop(); }
    void registerDecodeCallback(std::uint32_t reportId, LCD::CommChannel::DecodeCallback callback) override {
        decoders_.bind(reportId, std::move(callback));
    }
    void start() { decoders_.start(); }
    void put(lcdcomm::Report report) { decoders_.queue().put(std::move(report)); }

private:
    lcdcomm::Link link_;
    lcdcomm::Decoders decoders_{link_};
};

/// A component as the host runs it, between a channel that costs nothing and the thread of the decoders.
class Engine {
public:
    Engine() : channel_(changed) {
        platform_.bind(LCD::Comm::OBJ_COMM_HTTPCHANNEL_NAME, &channel_);
        platform_.bind(LCD::CommChannel::OBJ_COMMCHANNEL_AUTOREPORTRECEIVER_NAME, &receiver_);
        component_ = std::make_unique<lcdtest::Running<LCD::MemoryCacheImpl::SwitchMode>>();
        receiver_.start();
        (*component_)->registerRequestCallBack("bench", CB::SwitchModeChanged, [this](const std::any&) {
            told.reach();
        });
        post();
        delivered.wait();  // the first one fetches
    }

    void post() {
        post([this](const std::any&) { delivered.reach(); });
    }
    void post(const std::function<void(std::any)>& callback) {
        (*component_)->asyncGetSubData("bench", CB::SwitchModeChanged, callback);
    }
    void set() {
        (*component_)->asyncSetSubData("bench", CB::SwitchModeChanged, std::make_shared<s_SwitchMode>(), nullptr);
    }
    void report() {
        lcdcomm::Report report;
        report.id = kSwitchModeReport;
        report.body = R"({"enable":1})";
        receiver_.put(std::move(report));
    }

    Moment delivered, changed, told;

private:
    lcdtest::FakePlatform platform_;
    Channel channel_;
    std::unique_ptr<lcdtest::Running<LCD::MemoryCacheImpl::SwitchMode>> component_;
    Receiver receiver_;  // goes first, so that no decoder is called afterwards
};

/// The processor on which this thread, and those that it starts, run. Where the scheduler wakes a thread decides more
/// than what is measured here, so both sides of every hand-over have a processor of their own.
class Placement {
public:
    Placement() { sched_getaffinity(0, sizeof all_, &all_); }
    ~Placement() { moveAnywhere(); }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;

    /// The `nth` of those that this process may use; where there are fewer, the last.
    void moveTo(int nth) const {
        cpu_set_t one;
        CPU_ZERO(&one);
        int last = 0;
        for (int cpu = 0; cpu < CPU_SETSIZE && nth >= 0; ++cpu) {
            if (CPU_ISSET(cpu, &all_)) {
                last = cpu;
                --nth;
            }
        }
        CPU_SET(last, &one);
        sched_setaffinity(0, sizeof one, &one);
    }
    void moveAnywhere() const { sched_setaffinity(0, sizeof all_, &all_); }

private:
    cpu_set_t all_;
};

/// Keeps the processors from falling asleep, in whatever time nobody else wants: how long one takes to wake up says
/// nothing of who hands over how.
class Wakefulness {
public:
    Wakefulness() {
        for (unsigned i = 0; i < std::thread::hardware_concurrency(); ++i) {
            threads_.emplace_back([](const std::stop_token& stop) {
                constexpr sched_param kNone{};
                sched_setscheduler(0, SCHED_IDLE, &kNone);
                while (!stop.stop_requested()) {
                }
            });
        }
    }

private:
    std::vector<std::jthread> threads_;
};

template <class Start>
Latency latency(const char* name, Moment& end, Start start) {
    return {name, [&end, start] {
                const auto begin = Clock::now();
                start();
                return micros(end.wait() - begin);
            }};
}

/// Microseconds for one post, while eight threads post and the queue is drained between the rounds.
double timeOfCrowdedPost(Engine& engine) {
    constexpr int kThreads = 8;
    constexpr int kPosts = 25;  // the getter serves 200 a second
    constexpr int kRounds = 7;
    struct Round {
        std::atomic<int> left{kThreads * kPosts};
        std::atomic<Clock::duration::rep> spent{0};
        Moment drained;
    };
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto round = std::make_shared<Round>();  // outlives what is queued
        const std::function<void(std::any)> callback = [round](const std::any&) {
            if (--round->left == 0) {
                round->drained.reach();
            }
        };
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&engine, &callback, &round] {
                const auto begin = Clock::now();
                for (int post = 0; post < kPosts; ++post) {
                    engine.post(callback);
                }
                round->spent += (Clock::now() - begin).count();
            });
        }
        threads.clear();
        round->drained.wait();
        times.push_back(micros(Clock::duration(round->spent.load())) / (kThreads * kPosts));
    }
    return quantile(times, 0.5);
}

/// The hand-over first, then the three that are compared with it.
std::vector<Latency> sampled(Engine& engine, HandOver& bare, Moment& handed) {
    constexpr int kRounds = 200;
    std::vector<Latency> all;
    all.push_back(latency("hand-over", handed, [&bare] { bare.post(); }));
    all.push_back(latency("post to delivery", engine.delivered, [&engine] { engine.post(); }));
    all.push_back(latency("set to channel", engine.changed, [&engine] { engine.set(); }));
    all.push_back(latency("report to subscriber", engine.told, [&engine] { engine.report(); }));
    sample(all, kRounds, std::chrono::milliseconds(8));  // a getter rests for 5 ms after each delivery
    return all;
}

}  // namespace

Lines measureEngines() {
    const Wakefulness wakefulness;
    const Placement placement;
    Lines lines;
    for (const bool apart : {true, false}) {
        placement.moveTo(apart ? 1 : 0);
        Engine engine;
        Moment handed;
        HandOver bare([&handed](const std::shared_ptr<s_SwitchMode>&) { handed.reach(); });
        placement.moveTo(0);
        std::vector<Latency> all = sampled(engine, bare, handed);
        placement.moveAnywhere();
        const char* const where = apart ? "" : " on one processor";
        const double base = quantile(all[0].times, 0.5);
        const double goals[] = {0, 2.0, 2.0, 3.0};
        for (std::size_t i = 1; i < all.size(); ++i) {
            lines.push_back({all[i].name + where, quantile(all[i].times, 0.5) / base, "x",
                             apart ? Goal::atMost : Goal::none, goals[i]});
        }
        lines.push_back({std::string("bare hand-over") + where + ", time", base, " us"});
        if (apart) {
            lines.push_back({"post from 8 threads, time", timeOfCrowdedPost(engine), " us"});
        }
    }
    return lines;
}

}  // namespace bench
