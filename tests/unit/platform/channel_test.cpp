// The channel, inside a host, against a server of bare sockets.
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <numeric>

#include "platform/ktp/hostmessages.h"
#include "tests/support/logcapture.h"
#include "tests/unit/platform/commtest.h"

namespace {

using namespace lcdtest;
using lcdcomm::RequestEnd;

class ChannelTest : public CommTest {
protected:
    lcdcomm::ChannelStatus status() const { return comm().channel(); }
};

TEST_F(ChannelTest, EveryVerbCarriesWhatItIsGiven) {
    RawRequest seen;
    RawServer server(answering([&](const RawRequest& request) {
        seen = request;
        return "{\"code\":0}";
    }));
    IHttpChannel& channel = start(server);
    EXPECT_EQ(channel.baseUrl(), server.url());
    const LCD::Comm::QueryPairs query = {{"a b", "1&2=\xc3\xa9"}, {"c", ""}};
    const LCD::Comm::HeaderPairs headers = {{"Content-Type", "multipart/form-data; boundary=x"}, {"X-Empty", ""}};
    const std::string body = "{\"id\":[1,2]}";
    using Send = bool (IHttpChannel::*)(const std::string&, const LCD::Comm::QueryPairs*, const LCD::Comm::HeaderPairs*,
                                        const std::string*, std::uint16_t*, std::string*, int);
    const std::pair<const char*, Send> verbs[] = {{"GET", &IHttpChannel::sendGetRequest},
                                                  {"PUT", &IHttpChannel::sendPutRequest},
                                                  {"POST", &IHttpChannel::sendPostRequest},
                                                  {"DELETE", &IHttpChannel::sendDeleteRequest}};
    for (const auto& [verb, send] : verbs) {
        SCOPED_TRACE(verb);
        channel.setToken("secret");
        Answer answer;
        EXPECT_TRUE((channel.*send)("/zelto/v1/x", &query, &headers, &body, &answer.status, &answer.body, 42));
        EXPECT_EQ(answer.status, 200);
        EXPECT_EQ(answer.body, "{\"code\":0}");
        EXPECT_EQ(seen.verb, verb);
        EXPECT_EQ(seen.target, "/zelto/v1/x?a%20b=1%262%3D%C3%A9&c=");
        EXPECT_EQ(seen.body, body);
        EXPECT_EQ(seen.headers["content-type"], "multipart/form-data; boundary=x");
        EXPECT_EQ(seen.headers.count("x-empty"), 1U);
        EXPECT_EQ(seen.headers["authorization"], "Bearer secret");
        EXPECT_EQ(seen.headers["x-sequence-tag"], "42");

        channel.setToken("");
        EXPECT_TRUE((channel.*send)("/zelto/v1/y", nullptr, nullptr, nullptr, &answer.status, &answer.body, 0));
        EXPECT_EQ(seen.verb, verb);
        EXPECT_EQ(seen.target, "/zelto/v1/y");
        EXPECT_EQ(seen.headers.count("authorization") + seen.headers.count("x-sequence-tag"), 0U);
        EXPECT_TRUE((channel.*send)("/zelto/v1/y", nullptr, nullptr, &body, &answer.status, &answer.body, 0));
        EXPECT_EQ(seen.headers["content-type"], "application/json");
    }
    EXPECT_EQ(server.accepted(), 1) << "the connection is kept";
    const lcdcomm::ChannelStatus sums = status();
    EXPECT_EQ(sums.requests, 12U);
    EXPECT_EQ(sums.failures, 0U);
    EXPECT_EQ(sums.bytesSent, 8 * body.size());
    EXPECT_EQ(std::accumulate(sums.latency.begin(), sums.latency.end(), std::uint64_t{0}), 12U);
}

TEST_F(ChannelTest, NoValueBecomesALineOfItsOwn) {
    std::atomic<int> foreign = 0;
    std::atomic<int> requests = 0;
    RawServer server(answering([&](const RawRequest& request) {
        ++requests;
        foreign += static_cast<int>(request.headers.count("x-evil") + request.headers.count("authorization"));
        return "{}";
    }));
    IHttpChannel& channel = start(server);
    channel.setToken("a\r\nX-Evil: 1");
    EXPECT_TRUE(get(channel, "/zelto/v1/x").replied);
    Answer answer;
    const LCD::Comm::HeaderPairs bad[] = {{{"X", "1\r\nX-Evil: 1"}}, {{"X:\r\nX-Evil", "1"}}, {{"", "1"}}};
    for (const LCD::Comm::HeaderPairs& headers : bad) {
        EXPECT_FALSE(channel.sendGetRequest("/x", nullptr, &headers, nullptr, &answer.status, &answer.body, 0));
    }
    for (const char* path : {"", "x", "/a b", "/a HTTP/1.1\r\nX-Evil: 1\r\n\r\n"}) {
        EXPECT_FALSE(get(channel, path).replied) << path;
    }
    EXPECT_EQ(foreign, 0);
    EXPECT_EQ(requests, 1);
}

TEST_F(ChannelTest, WhatIsNoWholeReplyNeverReachesTheSender) {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: ";
    const auto whole = [&](const std::string& body) { return head + std::to_string(body.size()) + "\r\n\r\n" + body; };
    const std::string large(2000, '1');
    struct Case {
        const char* name;
        std::string bytes;
        RequestEnd how;
        bool stays = false;  // the connection
    } const cases[] = {
        {"cut before the first byte", "", RequestEnd::Cut},
        {"cut in the body", head + "9\r\n\r\n{\"code\"", RequestEnd::Cut},
        {"no HTTP", "\x01\x02garbage\r\n\r\n", RequestEnd::Garbled},
        {"no JSON", whole("<html></html>"), RequestEnd::Gated},
        {"nothing", whole(""), RequestEnd::Gated},
        {"nested too deeply", whole(std::string(300, '[') + std::string(300, ']')), RequestEnd::Gated},
        {"announced as too large", head + "2000\r\n\r\n" + large, RequestEnd::TooLarge},
        {"endless", "HTTP/1.1 200 OK\r\n\r\n" + large, RequestEnd::TooLarge, true},
        {"never ends", head + "9\r\n\r\n{", RequestEnd::TimedOut, true},
    };
    std::atomic<std::size_t> at = 0;
    RawServer server([&](RawConnection& connection) {
        connection.read();
        connection.send(cases[at].bytes);
        if (cases[at].stays) {
            connection.waitForEnd();
        }
    });
    ktp::HostConfig config = commConfig(server.url());
    config.settings.set(ktp::kLargestReply, 1024);
    IHttpChannel& channel = start(config);
    channel.setToken("secret");
    const LogCapture log;
    const auto begun = Clock::now();
    for (; at < std::size(cases); ++at) {
        channel.setTimeoutMs(cases[at].how == RequestEnd::TimedOut ? 50 : 20'000);
        EXPECT_FALSE(get(channel, "/zelto/v1/x").replied) << cases[at].name;
        EXPECT_EQ(watcher_.requests.last().how, cases[at].how) << cases[at].name;
        EXPECT_FALSE(watcher_.requests.last().arrived);
    }
    EXPECT_EQ(status().failures, std::size(cases));
    EXPECT_EQ(status().gated, 3U);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - begun).count();
    EXPECT_GE(log.count("/zelto/v1/x"), 1U);
    EXPECT_LE(log.count("/zelto/v1/x"), static_cast<std::size_t>(seconds) + 1) << "a line a second at most";
    EXPECT_FALSE(log.contains("secret"));
}

// Nobody knows whether the device has carried out what it didn't answer.
TEST_F(ChannelTest, WhatWasCutOffIsNotSentAgainUnlessThatChangesNothing) {
    std::atomic<int> seen = 0;
    RawServer server([&](RawConnection& connection) {
        while (const auto request = connection.read()) {
            if (request->target == "/cut") {
                ++seen;
                return;
            }
            connection.reply(200, "{}");
        }
    });
    IHttpChannel& channel = start(server);
    const std::string body = "{}";
    for (const std::string* each : {&body, static_cast<const std::string*>(nullptr)}) {
        EXPECT_TRUE(get(channel, "/warm").replied);
        Answer answer;
        seen = 0;
        EXPECT_FALSE(channel.sendPostRequest("/cut", nullptr, nullptr, each, &answer.status, &answer.body, 0));
        EXPECT_EQ(seen, 1);
    }
}

TEST_F(ChannelTest, AHundredAndFiftyThreadsSendAtOnce) {
    RawServer server(answering([](const RawRequest& request) { return "[\"" + request.target + "\"]"; }));
    IHttpChannel& channel = start(server);
    std::atomic<int> wrong = 0;
    inThreads(150, [&](unsigned thread) {
        for (int number = 0; number < 10; ++number) {
            const std::string path = fmt::format("/zelto/v1/{}/{}", thread, number);
            wrong += get(channel, path).body == "[\"" + path + "\"]" ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(status().requests, 1500U);
}

TEST_F(ChannelTest, AStopGivesRunningRequestsItsGraceAndNoMore) {
    Kept<bool> hanging;
    Kept<bool> announced;
    RawServer server([&](RawConnection& connection) {
        while (const auto request = connection.read()) {
            if (request->target == "/hang") {
                hanging.add(true);
                connection.waitForEnd();
            } else if (request->target == "/slow") {
                connection.reply(200, announced.waitFor(1) ? "\"in time\"" : "\"never\"");
            } else {
                connection.reply(200, "{}");
            }
        }
    });
    // Waits for its own requests when it is stopped, as every component does.
    std::future<Answer> hung;
    std::future<Answer> slow;
    Answer late{true, 0, ""};
    IHttpChannel* sending = nullptr;
    const ktp::ComponentInfo sender = part("test.sender", [&](const ktp::IMessage& message) {
        if (message.id() == ktp::kSystemStop) {
            hung.wait();
            slow.wait();
            late = get(*sending, "/late");
        } else if (message.id() == ktp::kStopAhead) {
            announced.add(true);
        }
        return 0;
    });
    ktp::HostConfig config = commConfig(server.url());
    config.settings.set(ktp::kStopGraceMs, 300);
    add(config, sender);
    IHttpChannel& channel = start(config);
    sending = &channel;

    // On a connection that is already there no timer of libcurl's wakes the request by chance.
    EXPECT_TRUE(get(channel, "/first").replied);
    hung = std::async(std::launch::async, [&] { return get(channel, "/hang"); });
    ASSERT_TRUE(hanging.waitFor(1));
    slow = std::async(std::launch::async, [&] { return get(channel, "/slow"); });
    const auto before = Clock::now();
    host_->stop();
    const auto took = Clock::now() - before;
    EXPECT_FALSE(hung.get().replied);
    EXPECT_EQ(slow.get().body, "\"in time\"");
    EXPECT_FALSE(late.replied);
    EXPECT_GE(took, 290ms);
    EXPECT_LT(took, 300ms + kPromptly);
}

TEST_F(ChannelTest, FormsAreRenderedOrRefused) {
    const TempFolder folder;
    std::ofstream(folder / "edid \".bin") << std::string("\0\r\n--x", 6);
    std::ofstream(folder / "large.bin") << std::string(3950, 'x');
    mkfifo((folder / "pipe").c_str(), 0600);

    ktp::HostConfig config = commConfig("http://127.0.0.1:1");
    config.settings.set(ktp::kLargestUpload, 4000);
    IHttpChannel& channel = start(config);
    const auto form = channel.createFormData();
    const std::string boundary = form->boundary();
    form->addField("config", "{\"id\":1}", nullptr, nullptr, 0);
    form->addField("a\"b\r\n", "x\0y", "text/plain", "n.txt", 3);
    form->addFile("file", (folder / "edid \".bin").c_str(), "application/octet-stream");
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(form->makeBody());
        EXPECT_EQ(form->boundary(), boundary);
        EXPECT_EQ(
            std::string(form->bodyData(), form->bodySize()),
            "--" + boundary + "\r\nContent-Disposition: form-data; name=\"config\"\r\n\r\n{\"id\":1}\r\n" +  //
                "--" + boundary + "\r\nContent-Disposition: form-data; name=\"a%22b%0D%0A\"; filename=\"n.txt\"\r\n" +
                "Content-Type: text/plain\r\n\r\n" + std::string("x\0y", 3) + "\r\n" +  //
                "--" + boundary + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"edid %22.bin\"\r\n" +
                "Content-Type: application/octet-stream\r\n\r\n" + std::string("\0\r\n--x", 6) + "\r\n" +  //
                "--" + boundary + "--\r\n");
    }
    EXPECT_NE(channel.createFormData()->boundary(), boundary);
    for (const char* name : {"missing", "large.bin", "pipe", "."}) {
        const auto bad = channel.createFormData();
        bad->addField("config", "{}", nullptr, nullptr, 0);
        bad->addFile("file", (folder / name).c_str(), nullptr);
        EXPECT_FALSE(bad->makeBody()) << name;
        EXPECT_EQ(bad->bodySize(), 0U);
    }
}

}  // namespace
