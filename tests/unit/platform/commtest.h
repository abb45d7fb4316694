// What the tests of the channel and the receiver share: a host around them, and somebody who watches.
#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcd/commchannel/autoreport.h"
#include "platform/ktp/host.h"
#include "platform/ktp/knownsettings.h"
#include "platform/lcdcomm/icommstatus.h"
#include "tests/support/inbox.h"
#include "tests/support/processguard.h"
#include "tests/support/rawserver.h"
#include "tests/support/testpart.h"

namespace lcdtest {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using LCD::Comm::IHttpChannel;

struct Answer {
    bool replied = false;
    std::uint16_t status = 0;
    std::string body;
};

inline Answer get(IHttpChannel& channel, const std::string& path) {
    Answer answer;
    answer.replied = channel.sendGetRequest(path, nullptr, nullptr, nullptr, &answer.status, &answer.body, 0);
    return answer;
}

/// Writes down what passes.
class Watcher final : public lcdcomm::ICommObserver {
public:
    struct Request {
        std::string line;   // "VERB PATH TAG BODY"
        std::string reply;  // with the status ahead
        lcdcomm::RequestEnd how{};
        bool arrived = false, resent = false;
    };

    void requestEnded(const lcdcomm::RequestSeen& seen) override {
        EXPECT_LE(seen.start, seen.end);
        requests.add({fmt::format("{} {} {} {}", seen.verb, seen.path, seen.sequenceTag,
                                  seen.body == nullptr ? "none" : *seen.body),
                      fmt::format("{} {}", seen.status, seen.reply == nullptr ? "none" : *seen.reply), seen.how,
                      seen.arrived, seen.resent});
    }
    void reportArrived(const lcdcomm::ReportSeen& seen) override {
        EXPECT_LE(seen.arrival, Clock::now());
        trail.add(fmt::format("{:x} {}-{} {}{} {}", seen.id, seen.epoch, seen.number, seen.source.token,
                              seen.source.sequence, seen.body));
    }
    void mirrorsStale() override { trail.add("stale"); }

    Kept<Request> requests;
    Kept<std::string> trail;  // reports and "stale", in their order
};

/// A host with the channel and its status.
class CommTest : public testing::Test {
protected:
    IHttpChannel& start(const ktp::HostConfig& config) {
        host_ = std::make_unique<ktp::Host>(config);
        host_->load();
        comm().observe(&watcher_);
        comm().onLoginNeeded(ask_);
        host_->start();
        return channel();
    }
    IHttpChannel& start(const RawServer& server) { return start(commConfig(server.url())); }

    IHttpChannel& channel() const { return *host_->find<IHttpChannel>("lcdHttpChannel"); }
    lcdcomm::ICommStatus& comm() const { return *host_->find<lcdcomm::ICommStatus>(lcdcomm::kCommStatusName); }

    void expectStopWithin(std::chrono::milliseconds time) {
        const auto before = Clock::now();
        host_->stop();
        EXPECT_LT(Clock::now() - before, time);
    }

    ProcessGuard guard_;
    Watcher watcher_;
    std::function<void()> ask_;  // set before the start
    std::unique_ptr<ktp::Host> host_;
};

inline std::string streamHead(const char* status = "200 OK", const char* type = "text/event-stream") {
    return fmt::format("HTTP/1.1 {}\r\nContent-Type: {}\r\n\r\n: here\n\n", status, type);
}

inline std::string event(const std::string& number, const std::string& body, const char* id = "71201",
                         const char* token = "me", int sequence = 0) {
    return fmt::format("event: {}\nid: {}\ndata: {{\"token\":\"{}\",\"sequence\":{}}}\ndata: {}\n\n", id, number, token,
                       sequence, body);
}

/// With the receiver, to which two decoders are bound.
class ReceiverTest : public CommTest {
protected:
    ReceiverTest() {
        // Binds while components start, as getters do.
        binder_ = part("test.binder", [this](const ktp::IMessage& message) {
            if (message.id() == ktp::kSystemRun) {
                bind();
            }
            return told_ ? told_(message) : 0;
        });
    }

    /// Fills `config_`, which a test may still change.
    void configure(const std::string& url) {
        config_ = commConfig(url);
        add(config_, binder_);
        config_.components.push_back({"lcd.comm.autoreportreceiver", "lcdAutoReportReceiver"});
        config_.settings.set(ktp::kConnectTimeoutMs, 60'000);
        config_.settings.set(ktp::kHeartbeatMs, heartbeatMs_);
        config_.settings.set(ktp::kFirstRetryMs, retryMs_);
        config_.settings.set(ktp::kLongestRetryMs, retryMs_);
    }
    void startConfigured(const char* token = "token") {
        CommTest::start(config_);
        channel().setToken(token);
    }
    void start(const std::string& url, const char* token = "token") {
        configure(url);
        startConfigured(token);
    }
    lcdcomm::ReceiverStatus status() const { return comm().receiver(); }

    void bind() {
        auto& receiver = *host_->find<LCD::CommChannel::IAutoReportReceiver>("lcdAutoReportReceiver");
        for (const char* name : {"a", "b"}) {
            receiver.registerDecodeCallback(
                0x71201, [this, name](const std::string& body, const LCD::CommChannel::AutoReportSource& source) {
                    return decode(fmt::format("{}:{}:{}{}", name, body, source.token, source.sequence));
                });
        }
    }
    bool decode(const std::string& line) {
        if (busy_) {
            busy_();
        }
        decoded_.add(line);
        return line.rfind("b:", 0) != 0;
    }
    std::vector<std::string> decoded() const { return decoded_.all(); }

    int heartbeatMs_ = 30'000;
    int retryMs_ = 1;
    Act told_;                    // what the binder does with its messages; set before the start
    std::function<void()> busy_;  // what a decoder does first; set before the start
    ktp::ComponentInfo binder_;
    ktp::HostConfig config_;
    Kept<std::string> decoded_;
};

}  // namespace lcdtest
