// The channel, inside a host, against a server of bare sockets.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

#include "lcd/comm/ihttpchannel.h"
#include "platform/ktp/host.h"
#include "platform/ktp/hostmessages.h"
#include "platform/lcdcomm/curllibrary.h"
#include "platform/lcdcomm/icommstatus.h"
#include "platform/lcdcomm/transferpool.h"
#include "tests/support/processguard.h"
#include "tests/support/rawserver.h"
#include "tests/support/testpart.h"

namespace {

using namespace lcdtest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using LCD::Comm::IHttpChannel;

struct Answer {
    bool replied = false;
    std::uint16_t status = 0;
    std::string body;
};

Answer get(IHttpChannel& channel, const std::string& path) {
    Answer answer;
    answer.replied = channel.sendGetRequest(path, nullptr, nullptr, nullptr, &answer.status, &answer.body, 0);
    return answer;
}

// A thread's door that opens once.
class Gate {
public:
    void open() { promise_.set_value(); }
    bool waitFor(std::chrono::seconds time = 20s) { return future_.wait_for(time) == std::future_status::ready; }

private:
    std::promise<void> promise_;
    std::shared_future<void> future_ = promise_.get_future().share();
};

class ChannelTest : public testing::Test {
protected:
    IHttpChannel& start(const ktp::HostConfig& config) {
        host_ = std::make_unique<ktp::Host>(config);
        host_->start();
        return *host_->find<IHttpChannel>("lcdHttpChannel");
    }
    IHttpChannel& start(const RawServer& server) { return start(commConfig(server.url())); }
    lcdcomm::ChannelStatus status() const { return host_->find<lcdcomm::ICommStatus>("lcdCommStatus")->channel(); }

    ProcessGuard guard_;
    std::unique_ptr<ktp::Host> host_;
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

TEST_F(ChannelTest, AHundredAndFiftyThreadsSendAtOnce) {
    RawServer server(answering([](const RawRequest& request) { return request.target; }));
    IHttpChannel& channel = start(server);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 150; ++thread) {
        threads.emplace_back([&, thread] {
            for (int number = 0; number < 10; ++number) {
                const std::string path = fmt::format("/zelto/v1/{}/{}", thread, number);
                wrong += get(channel, path).body == path ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(status().requests, 1500U);
}

TEST_F(ChannelTest, WhatIsNoReplyIsAFailure) {
    const std::string chunk = "10000\r\n" + std::string(0x10000, ' ') + "\r\n";
    const std::map<std::string, std::function<void(RawConnection&)>> misdeeds = {
        {"/hang", [](RawConnection& c) { c.waitForEnd(); }},
        {"/drop", [](RawConnection&) {}},
        {"/cut", [](RawConnection& c) { c.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"); }},
        {"/garbage", [](RawConnection& c) { c.send("what?\r\n\r\n"); }},
        {"/announced",
         [](RawConnection& c) {
             c.send("HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n" + std::string(70'000, 'x'));
         }},
        {"/endless",
         [&](RawConnection& c) {
             c.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
             while (c.send(chunk)) {
             }
         }},
        {"/headers", [](RawConnection& c) {
             c.send("HTTP/1.1 200 OK\r\n");
             while (c.send("X-More: " + std::string(1000, 'x') + "\r\n")) {
             }
         }}};
    RawServer server([&](RawConnection& connection) {
        while (const auto request = connection.read()) {
            const auto misdeed = misdeeds.find(request->target);
            if (misdeed != misdeeds.end()) {
                return misdeed->second(connection);
            }
            connection.reply(500, "busy");
        }
    });
    ktp::HostConfig config = commConfig(server.url());
    config.settings.set(ktp::kLargestReply, 64 * 1024);
    IHttpChannel& channel = start(config);
    for (const auto& [path, misdeed] : misdeeds) {
        SCOPED_TRACE(path);
        channel.setTimeoutMs(path == "/hang" ? 50 : 10'000);
        const auto before = Clock::now();
        const Answer answer = get(channel, path);
        EXPECT_FALSE(answer.replied);
        EXPECT_EQ(answer.body, "");
        EXPECT_LT(Clock::now() - before, 5s);
    }
    const Answer busy = get(channel, "/fine");
    EXPECT_TRUE(busy.replied) << "any status is a reply";
    EXPECT_EQ(busy.status, 500);
    EXPECT_EQ(busy.body, "busy");
    EXPECT_EQ(status().failures, misdeeds.size());
}

TEST_F(ChannelTest, NobodyListens) {
    IHttpChannel& channel = start(commConfig("http://127.0.0.1:" + std::to_string(unusedPort())));
    const auto before = Clock::now();
    EXPECT_FALSE(get(channel, "/zelto/v1/x").replied);
    EXPECT_LT(Clock::now() - before, 2s);
}

TEST_F(ChannelTest, AStopGivesRunningRequestsItsGraceAndNoMore) {
    Gate hanging;
    Gate announced;
    RawServer server([&](RawConnection& connection) {
        while (const auto request = connection.read()) {
            if (request->target == "/hang") {
                hanging.open();
                connection.waitForEnd();
            } else if (request->target == "/slow") {
                connection.reply(200, announced.waitFor() ? "in time" : "never");
            } else {
                connection.reply(200, "{}");
            }
        }
    });
    // Waits for its own requests when it is stopped, as every component does.
    std::future<Answer> hung;
    std::future<Answer> slow;
    const ktp::ComponentInfo sender = part("test.sender", [&](const ktp::IMessage& message) {
        if (message.id() == ktp::kSystemStop) {
            hung.wait();
            slow.wait();
        } else if (message.id() == ktp::kStopAhead) {
            announced.open();
        }
        return 0;
    });
    ktp::HostConfig config = commConfig(server.url());
    config.settings.set(ktp::kStopGraceMs, 300);
    add(config, sender);
    IHttpChannel& channel = start(config);

    // On a connection that is already there no timer of libcurl's wakes the request by chance.
    EXPECT_TRUE(get(channel, "/first").replied);
    hung = std::async(std::launch::async, [&] { return get(channel, "/hang"); });
    ASSERT_TRUE(hanging.waitFor());
    slow = std::async(std::launch::async, [&] { return get(channel, "/slow"); });
    const auto before = Clock::now();
    host_->stop();
    const auto took = Clock::now() - before;
    EXPECT_FALSE(hung.get().replied);
    EXPECT_EQ(slow.get().body, "in time");
    EXPECT_GE(took, 290ms);
    EXPECT_LT(took, 300ms + kPromptly);
}

TEST_F(ChannelTest, AStopWithoutRequestsIsImmediate) {
    RawServer server(answering([](const RawRequest&) { return "{}"; }));
    // Starts first and so stops after the channel, within the grace.
    IHttpChannel* channel = nullptr;
    Answer afterStop{true, 0, ""};
    const ktp::ComponentInfo late = part("test.late", [&](const ktp::IMessage& message) {
        if (message.id() == ktp::kSystemStop) {
            afterStop = get(*channel, "/late");
        }
        return 0;
    });
    ktp::HostConfig config = commConfig(server.url());
    add(config, late);
    std::rotate(config.components.begin(), config.components.end() - 1, config.components.end());
    channel = &start(config);
    EXPECT_TRUE(get(*channel, "/zelto/v1/x").replied);
    const auto before = Clock::now();
    host_->stop();
    EXPECT_LT(Clock::now() - before, kPromptly) << "the grace of 2 s isn't waited for";
    EXPECT_FALSE(afterStop.replied);
}

TEST(TransferPoolTest, ClosesWhenTheLastTransferIsBack) {
    lcdcomm::keepCurlLoaded();
    lcdcomm::TransferPool pool(50ms);
    Gate lent;
    std::atomic<bool> back = false;
    std::thread borrower([&] {
        const auto transfer = pool.lease();
        lent.open();
        EXPECT_TRUE(eventually([&] { return pool.remaining() <= 0ms; }));
        back = true;
    });
    ASSERT_TRUE(lent.waitFor());
    pool.close();
    EXPECT_TRUE(back);
    EXPECT_FALSE(pool.lease());
    borrower.join();
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
