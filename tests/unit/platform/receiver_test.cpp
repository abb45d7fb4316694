// The receiver: its parser, and the whole inside a host against a server of bare sockets.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/lcdcomm/backoff.h"
#include "platform/lcdcomm/reportqueue.h"
#include "tests/unit/platform/commtest.h"

namespace {

using namespace lcdtest;
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
        {"1", "e-1", "{\"token\":1,\"sequence\":1}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":[1]}"},
        {"1", "e-1", "{\"token\":\"t\",\"sequence\":1} 2"},
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

TEST_F(ReceiverTest, HandsEachReportToAllItsDecodersInOrder) {
    std::atomic<bool> asked = false;
    RawServer server([&](RawConnection& connection) {
        const auto request = connection.read();
        asked = request && request->target == "/zelto/v1/report/stream" &&
                request->headers.at("authorization") == "Bearer token";
        connection.send(streamHead() + event("e-4", "{\"x\":\ndata: 1}", "71201", "me", 7) + event("e-5", "[]", "99") +
                        event("e-5", "0") + event("e-2", "0") + event("e-8", "8") + event("bad", "0") +
                        event("f-1", "1") + event("f-2", "2"));
        connection.waitForEnd();
    });
    start(server.url(), "");
    EXPECT_EQ(server.accepted(), 0) << "without a token nobody asks";
    channel().setToken("token");
    EXPECT_TRUE(eventually([this] { return decoded().size() == 8; }));
    EXPECT_TRUE(asked);
    EXPECT_THAT(decoded(), ElementsAre("a:{\"x\":\n1}:me7", "b:{\"x\":\n1}:me7", "a:8:me0", "b:8:me0", "a:1:me0",
                                       "b:1:me0", "a:2:me0", "b:2:me0"));
    EXPECT_TRUE(eventually([this] { return status().decoded == 8; }));
    const lcdcomm::ReceiverStatus sums = status();
    EXPECT_TRUE(sums.connected);
    EXPECT_EQ(sums.connects, 1U);
    EXPECT_EQ(sums.reports, 7U);
    EXPECT_EQ(sums.malformed, 1U);
    EXPECT_EQ(sums.late, 2U);
    EXPECT_EQ(sums.unbound, 1U);
    EXPECT_EQ(sums.decoderRefused, 4U);
    EXPECT_EQ(sums.gaps, 4U) << "the connect, the numbers passed over, the event that is no report, the new epoch";
}

TEST_F(ReceiverTest, OpensAnewWhatEndsBreaksOrFallsSilent) {
    heartbeatMs_ = kSanitized ? 1000 : 250;  // silence, not a busy machine, breaks the stream
    Kept<std::string> tokens;
    RawServer server([&](RawConnection& connection) {
        tokens.add(connection.read()->headers.at("authorization"));
        switch (tokens.count()) {
            case 1:  // ends
                connection.send(streamHead() + event("e-1", "1"));
                return;
            case 2:  // breaks
                connection.send(streamHead() + event("e-1", "0") + event("e-2", "2") + "<html>\n" + event("e-3", "0"));
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
    channel().setToken("other");
    const std::uint64_t bytes = status().bytes;
    EXPECT_TRUE(eventually([&] { return status().bytes > bytes + 200; }));
    EXPECT_EQ(status().connects, 5U);
    EXPECT_THAT(tokens.all(), testing::Each("Bearer token"));
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
    start(silent.url(), "");
    expectStopWithin(kPromptly);
    start(silent.url());
    EXPECT_TRUE(eventually([&] { return silent.accepted() == 1; }));
    expectStopWithin(kPromptly);
    start(open.url());
    EXPECT_TRUE(eventually([this] { return status().connected; }));
    expectStopWithin(kPromptly);
    start(refusing.url());
    EXPECT_TRUE(eventually([&] { return refusing.accepted() == 1; }));
    expectStopWithin(kPromptly);
}

TEST_F(ReceiverTest, NoDecoderRunsAfterTheStopAndNoneIsBoundTooLate) {
    RawServer server([](RawConnection& connection) {
        connection.read();
        connection.send(streamHead());
        for (int number = 1; connection.send(event(fmt::format("e-{}", number), "{}")); ++number) {
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
