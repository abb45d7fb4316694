// The receiver: its parser, and the whole inside a host against a server of bare sockets.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "lcd/commchannel/autoreport.h"
#include "platform/ktp/host.h"
#include "platform/lcdcomm/backoff.h"
#include "platform/lcdcomm/icommstatus.h"
#include "platform/lcdcomm/reportqueue.h"
#include "tests/support/processguard.h"
#include "tests/support/rawserver.h"
#include "tests/support/testpart.h"

namespace {

using namespace lcdtest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using LCD::CommChannel::AutoReportSource;
using LCD::CommChannel::IAutoReportReceiver;
using lcdcomm::EventParser;
using lcdcomm::Gap;
using lcdcomm::Report;
using lcdcomm::StreamEvent;
using testing::ElementsAre;

// Events as text, and the parser's problem in the end.
std::vector<std::string> parse(const std::string& bytes, std::size_t piece, std::size_t largest = 1000) {
    EventParser parser(largest);
    std::vector<std::string> out;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        parser.feed(std::string_view(bytes).substr(at, piece), [&out](const StreamEvent& event) {
            out.push_back(event.event + "|" + event.id + "|" + event.data);
        });
    }
    if (parser.problem() != nullptr) {
        out.emplace_back(parser.problem());
    }
    return out;
}

TEST(EventParserTest, GivesTheSameForAllPieces) {
    const std::string bytes =
        ": here\n\n:\nevent: 71201\nid:e-1\ndata: {}\n:inside\ndata:  two\ndata\n\n"
        "retry: 5\n\r\n\ndata: crlf\r\n\r\nid\n\ndata: cut\n";
    for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
        EXPECT_THAT(parse(bytes, piece), ElementsAre("71201|e-1|{}\n two\n", "||crlf", "||")) << piece;
    }
}

TEST(EventParserTest, StopsForGoodAtWhatIsNoStream) {
    const std::string good = "data: 1\n\n";
    const std::string notAField = "a line is neither a comment nor a field";
    const std::string twice = "a field stands twice in an event";
    const std::string large = "an event is larger than allowed";
    const std::pair<std::string, std::string> cases[] = {
        {"<html>\n", notAField},
        {"{\"a\":1}\n", notAField},
        {"Data: 1\n", notAField},
        {" data: 1\n", notAField},
        {"data : 1\n", notAField},
        {"event: 1\nevent: 2\n", twice},
        {"id: 1\nid: 1\n", twice},
        {"data: a\rdata: b\n", "a carriage return stands inside a line"},
        {std::string(1001, 'x'), large},
        {": " + std::string(1001, 'x'), large},
        {"data: " + std::string(600, 'x') + "\ndata: " + std::string(600, 'x') + "\n", large},
        {"event: " + std::string(600, 'x') + "\nid: " + std::string(600, 'x') + "\n", large},
        {"id: " + std::string(600, 'x') + "\nevent: " + std::string(600, 'x') + "\n", large},
    };
    for (const auto& [bytes, problem] : cases) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{100'000}}) {
            EXPECT_THAT(parse(good + bytes + good, piece), ElementsAre("||1", problem)) << bytes;
        }
    }
    const std::string endless = "data:\n";
    std::string many;
    for (int line = 0; line < 2000; ++line) {
        many += endless;
    }
    EXPECT_THAT(parse(many, 64), ElementsAre(large)) << "line feeds count, too";
}

TEST(ReportTest, IsReadFromAnEventOrNotAtAll) {
    const std::string source = R"({"token":"t\u00e9","sequence":-5})";
    const auto report = lcdcomm::readReport({"e0100", "a-b-17", source + "\n{\"a\":1,\n\"b\":2}"});
    ASSERT_TRUE(report);
    EXPECT_EQ(report->id, 0xe0100U);
    EXPECT_EQ(report->epoch, "a-b");
    EXPECT_EQ(report->number, 17U);
    EXPECT_EQ(report->source.token, "t\xc3\xa9");
    EXPECT_EQ(report->source.sequence, -5);
    EXPECT_EQ(report->body, "{\"a\":1,\n\"b\":2}");

    const StreamEvent bad[] = {
        {"", "e-1", source},
        {"0xe0100", "e-1", source},
        {"g", "e-1", source},
        {"1e0100000", "e-1", source},
        {"-1", "e-1", source},
        {"1", "", source},
        {"1", "7", source},
        {"1", "-7", source},
        {"1", "e-", source},
        {"1", "e-7x", source},
        {"1", "e-18446744073709551616", source},
        {"1", std::string(65, 'e') + "-1", source},
        {"1", "e-1", ""},
        {"1", "e-1", "[]"},
        {"1", "e-1", "{\"token\":\"t\"}"},
        {"1", "e-1", "{\"token\":1,\"sequence\":1}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":\"1\"}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":1.5}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":2147483648}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":18446744073709551615}"},
        {"1", "e-1", "{\"token\":\"t\",\n\"sequence\":1}"},
        {"1", "e-1", "{\"token\":\"" + std::string(9000, 't') + "\",\"sequence\":1}"},
    };
    for (const StreamEvent& event : bad) {
        EXPECT_FALSE(lcdcomm::readReport(event)) << event.event << " " << event.id << " " << event.data;
    }
}

TEST(ReportQueueTest, DropsWhatDoesntFitAndMarksThePlace) {
    std::atomic<std::uint64_t> depth = 0;
    lcdcomm::ReportQueue queue(2, 1000, depth);
    const auto numbered = [](std::uint64_t number, std::size_t size = 0) {
        return Report{1, "e", number, {}, std::string(size, 'x')};
    };
    queue.put(Gap::Connected);
    queue.put(Gap::Connected);
    EXPECT_TRUE(queue.put(numbered(1)));
    EXPECT_FALSE(queue.put(numbered(2, 900))) << "too many bytes";
    EXPECT_TRUE(queue.put(numbered(3)));
    EXPECT_FALSE(queue.put(numbered(4))) << "too many reports";
    EXPECT_FALSE(queue.put(numbered(5)));
    EXPECT_EQ(depth, 2U);

    std::string order;
    std::stop_source stop;
    for (int taken = 0; taken < 5; ++taken) {
        const auto delivery = *queue.take(stop.get_token());
        const Report* report = std::get_if<Report>(&delivery);
        order += report != nullptr ? fmt::format("{} ", report->number)
                                   : fmt::format("gap{} ", static_cast<int>(std::get<Gap>(delivery)));
    }
    EXPECT_EQ(order, "gap0 1 gap3 3 gap3 ");
    EXPECT_TRUE(queue.put(numbered(6, 700))) << "the bytes are free again";
    stop.request_stop();
    EXPECT_FALSE(queue.take(stop.get_token()));
}

TEST(BackoffTest, DoublesToTheLongestAndStartsAnewAfterALife) {
    lcdcomm::Backoff backoff(100ms, 1000ms);
    for (int round = 0; round < 20; ++round) {
        for (const auto whole : {100ms, 200ms, 400ms, 800ms, 1000ms, 1000ms}) {
            // The life is shorter than the wait, but for the first one of a later round.
            const auto wait = backoff.next(whole == 100ms && round > 0 ? 1001ms : 100ms);
            EXPECT_GE(wait, whole / 2);
            EXPECT_LE(wait, whole);
        }
    }
}

std::string streamHead(const char* status = "200 OK", const char* type = "text/event-stream") {
    return fmt::format("HTTP/1.1 {}\r\nContent-Type: {}\r\n\r\n: here\n\n", status, type);
}

std::string event(const std::string& number, const std::string& body, const char* id = "71201",
                  const char* token = "me", int sequence = 0) {
    return fmt::format("event: {}\nid: {}\ndata: {{\"token\":\"{}\",\"sequence\":{}}}\ndata: {}\n\n", id, number, token,
                       sequence, body);
}

class ReceiverTest : public testing::Test {
protected:
    ReceiverTest() {
        // Binds while components start, as getters do.
        binder_ = part("test.binder", [this](const ktp::IMessage& message) {
            if (message.id() == ktp::kSystemRun) {
                auto& receiver = *host_->find<IAutoReportReceiver>("lcdAutoReportReceiver");
                for (const char* name : {"a", "b"}) {
                    receiver.registerDecodeCallback(
                        0x71201, [this, name](const std::string& body, const AutoReportSource& source) {
                            return decode(fmt::format("{}:{}:{}{}", name, body, source.token, source.sequence));
                        });
                }
            }
            return 0;
        });
    }

    void start(const std::string& url, const char* token = "token") {
        config_ = commConfig(url);
        add(config_, binder_);
        config_.components.push_back({"lcd.comm.autoreportreceiver", "lcdAutoReportReceiver"});
        config_.settings.set(ktp::kConnectTimeoutMs, 60'000);
        config_.settings.set(ktp::kHeartbeatMs, heartbeatMs_);
        config_.settings.set(ktp::kFirstRetryMs, retryMs_);
        config_.settings.set(ktp::kLongestRetryMs, retryMs_);
        host_ = std::make_unique<ktp::Host>(config_);
        host_->start();
        login(token);
    }
    void login(const char* token) { host_->find<LCD::Comm::IHttpChannel>("lcdHttpChannel")->setToken(token); }
    lcdcomm::ReceiverStatus status() const { return host_->find<lcdcomm::ICommStatus>("lcdCommStatus")->receiver(); }

    bool decode(const std::string& line) {
        const std::lock_guard lock(mutex_);
        decoded_.push_back(line);
        return line.rfind("b:", 0) != 0;
    }
    std::vector<std::string> decoded() const {
        const std::lock_guard lock(mutex_);
        return decoded_;
    }

    ProcessGuard guard_;
    int heartbeatMs_ = 30'000;
    int retryMs_ = 1;
    ktp::ComponentInfo binder_;
    ktp::HostConfig config_;
    std::unique_ptr<ktp::Host> host_;
    mutable std::mutex mutex_;
    std::vector<std::string> decoded_;
};

TEST_F(ReceiverTest, HandsEachReportToAllItsDecodersInOrder) {
    std::atomic<bool> asked = false;
    RawServer server([&](RawConnection& connection) {
        const auto request = connection.read();
        asked = request && request->target == "/zelto/v1/report/stream" &&
                request->headers.at("authorization") == "Bearer token";
        connection.send(streamHead() + event("e-4", "{\"x\":\ndata: 1}", "71201", "me", 7) + event("e-5", "[]", "99") +
                        event("e-5", "dup") + event("e-2", "late") + event("e-8", "8") + event("bad", "x") +
                        event("f-1", "new") + event("f-2", "2"));
        connection.waitForEnd();
    });
    start(server.url(), "");
    EXPECT_EQ(server.accepted(), 0) << "without a token nobody asks";
    login("token");
    EXPECT_TRUE(eventually([this] { return decoded().size() == 8; }));
    EXPECT_TRUE(asked);
    EXPECT_THAT(decoded(), ElementsAre("a:{\"x\":\n1}:me7", "b:{\"x\":\n1}:me7", "a:8:me0", "b:8:me0", "a:new:me0",
                                       "b:new:me0", "a:2:me0", "b:2:me0"));
    EXPECT_TRUE(eventually([this] { return status().decoded == 8; }));
    const lcdcomm::ReceiverStatus sums = status();
    EXPECT_TRUE(sums.connected);
    EXPECT_EQ(sums.connects, 1U);
    EXPECT_EQ(sums.reports, 7U);
    EXPECT_EQ(sums.malformed, 1U);
    EXPECT_EQ(sums.late, 2U);
    EXPECT_EQ(sums.unbound, 1U);
    EXPECT_EQ(sums.decoderRefused, 4U);
    EXPECT_EQ(sums.gaps, 3U) << "the connect, the numbers passed over, the new epoch";
}

TEST_F(ReceiverTest, OpensAnewWhatEndsBreaksOrFallsSilent) {
    heartbeatMs_ = 50;
    std::mutex mutex;
    std::vector<std::string> tokens;
    RawServer server([&](RawConnection& connection) {
        const auto request = connection.read();
        std::size_t round = 0;
        {
            const std::lock_guard lock(mutex);
            tokens.push_back(request->headers.at("authorization"));
            round = tokens.size();
        }
        switch (round) {
            case 1:  // ends
                connection.send(streamHead() + event("e-1", "1"));
                return;
            case 2:  // breaks
                connection.send(streamHead() + event("e-1", "again") + event("e-2", "2") + "<html>\n" +
                                event("e-3", "behind"));
                return connection.waitForEnd();
            case 3:  // falls silent
                connection.send(streamHead() + event("e-3", "3"));
                return connection.waitForEnd();
            case 4:  // is no stream
                connection.send(streamHead("200 OK", "text/html") + event("e-4", "4"));
                return connection.waitForEnd();
            case 5:  // was cut off in mid-event
                connection.send(streamHead() + event("e-4", "4") + "event: 71201\nid: e-5\ndata: {\"tok");
                return;
            default:
                connection.send(streamHead() + event("e-5", "5"));
                while (connection.send(": beat\n\n")) {
                    std::this_thread::sleep_for(10ms);  // the heartbeat
                }
        }
    });
    start(server.url());
    EXPECT_TRUE(eventually([this] { return decoded().size() == 10; }));
    EXPECT_THAT(decoded(), ElementsAre("a:1:me0", "b:1:me0", "a:2:me0", "b:2:me0", "a:3:me0", "b:3:me0", "a:4:me0",
                                       "b:4:me0", "a:5:me0", "b:5:me0"));
    // A login leaves the stream alone, however long it beats.
    login("other");
    const std::uint64_t bytes = status().bytes;
    EXPECT_TRUE(eventually([&] { return status().bytes > bytes + 200; }));
    EXPECT_EQ(status().connects, 5U);
    EXPECT_THAT(tokens, testing::Each("Bearer token"));
}

TEST_F(ReceiverTest, ATokenThatTheDeviceRefusesIsAskedAgainWithTheNextOne) {
    retryMs_ = 60'000;
    RawServer server([&](RawConnection& connection) {
        const auto request = connection.read();
        if (request->headers.at("authorization") == "Bearer new") {
            connection.send(streamHead() + event("e-1", "1"));
        } else {
            connection.reply(401, "{}");
        }
        connection.waitForEnd();
    });
    start(server.url(), "old");
    ASSERT_TRUE(eventually([&] { return server.accepted() == 1; }));
    login("");
    login("new");
    EXPECT_TRUE(eventually([this] { return decoded().size() == 2; })) << "without waiting for a minute";
}

TEST_F(ReceiverTest, StopsAtOnceWhateverItWaitsFor) {
    RawServer silent([](RawConnection& connection) { connection.waitForEnd(); });
    RawServer open([](RawConnection& connection) {
        connection.read();
        connection.send(streamHead());
        connection.waitForEnd();
    });
    RawServer refusing([](RawConnection& connection) {
        connection.read();
        connection.reply(503, "");
    });
    retryMs_ = 60'000;
    const auto stopTakesNoTime = [this] {
        const auto before = Clock::now();
        host_->stop();
        EXPECT_LT(Clock::now() - before, kPromptly);
    };
    start(silent.url(), "");
    stopTakesNoTime();
    start(silent.url());
    EXPECT_TRUE(eventually([&] { return silent.accepted() == 1; }));
    stopTakesNoTime();
    start(open.url());
    EXPECT_TRUE(eventually([this] { return status().connected; }));
    stopTakesNoTime();
    start(refusing.url());
    EXPECT_TRUE(eventually([&] { return refusing.accepted() == 1; }));
    stopTakesNoTime();
}

TEST_F(ReceiverTest, NoDecoderRunsAfterTheStopAndNoneIsBoundTooLate) {
    RawServer server([](RawConnection& connection) {
        connection.read();
        connection.send(streamHead());
        for (int number = 1; connection.send(event(fmt::format("e-{}", number), "x")); ++number) {
        }
    });
    start(server.url());
    host_->find<IAutoReportReceiver>("lcdAutoReportReceiver")
        ->registerDecodeCallback(0x71201,
                                 [this](const std::string&, const AutoReportSource&) { return decode("too late"); });
    EXPECT_TRUE(eventually([this] { return decoded().size() > 100; }));
    host_->stop();
    const std::vector<std::string> atStop = decoded();
    EXPECT_EQ(std::count(atStop.begin(), atStop.end(), "too late"), 0);
    EXPECT_EQ(atStop.size() % 2, 0U) << "a report reaches all its decoders or none";
}

}  // namespace
