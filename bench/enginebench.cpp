// The two engines and the path of a report beside a bare hand-over from one thread to another.
#include <sched.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "bench/latency.h"
#include "bench/results.h"
#include "lcdmemorycacheimpl/screen/switchmode.h"
#include "platform/lcdcomm/reportqueue.h"
#include "platform/lcdcomm/resync.h"
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

/// A component as the host runs it, between a channel and a receiver that cost nothing.
class Engine {
public:
    Engine() : channel_(changed) {
        platform_.bind(LCD::Comm::OBJ_COMM_HTTPCHANNEL_NAME, &channel_);
        component_ = std::make_unique<lcdtest::Running<LCD::MemoryCacheImpl::SwitchMode>>();
        decoder_ = std::jthread([this](const std::stop_token& stop) {
            while (const auto delivery = reports_.take(stop, resync_.due())) {
                const auto& report = std::get<lcdcomm::Report>(*delivery);
                platform_.receiver.push(report.id, report.body, report.source);
                resync_.take(lcdcomm::Resync::Clock::now());
            }
        });
        (*component_)->registerRequestCallBack("bench", CB::SwitchModeChanged, [this](const std::any&) {
            told.reach();
        });
        post();
        delivered.wait();  // the first one fetches
    }
    ~Engine() { decoder_ = {}; }

    void post() {
        (*component_)->asyncGetSubData("bench", CB::SwitchModeChanged, [this](const std::any&) { delivered.reach(); });
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
        reports_.put(std::move(report));
    }

    Moment delivered, changed, told;

private:
    lcdtest::FakePlatform platform_;
    Channel channel_;
    std::unique_ptr<lcdtest::Running<LCD::MemoryCacheImpl::SwitchMode>> component_;
    std::atomic<std::uint64_t> depth_{0};
    lcdcomm::ReportQueue reports_{1000, 1 << 20, depth_};
    lcdcomm::Flights flights_{std::chrono::milliseconds(500)};
    lcdcomm::Resync resync_{std::chrono::milliseconds(250), flights_};
    std::jthread decoder_;
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

}  // namespace

Lines measureEngines() {
    constexpr int kRounds = 200;
    const Wakefulness wakefulness;
    Engine engine;
    Moment handed;
    HandOver bare([&handed](const std::shared_ptr<s_SwitchMode>&) { handed.reach(); });
    std::vector<Latency> all;
    all.push_back(latency("hand-over", handed, [&bare] { bare.post(); }));
    all.push_back(latency("post to delivery", engine.delivered, [&engine] { engine.post(); }));
    all.push_back(latency("set to channel", engine.changed, [&engine] { engine.set(); }));
    all.push_back(latency("report to subscriber", engine.told, [&engine] { engine.report(); }));
    sample(all, kRounds, std::chrono::milliseconds(8));  // a getter rests for 5 ms after each delivery
    const double base = quantile(all[0].times, 0.5);
    Lines lines;
    const double goals[] = {0, 2.0, 2.0, 3.0};
    for (std::size_t i = 1; i < all.size(); ++i) {
        lines.push_back({all[i].name, quantile(all[i].times, 0.5) / base, "x", Goal::atMost, goals[i]});
    }
    lines.push_back({"bare hand-over, time", base, " us"});
    lines.push_back({"post from 8 threads, time", timeOfCrowdedPost(engine), " us"});
    return lines;
}

}  // namespace bench
