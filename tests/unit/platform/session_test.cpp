// What becomes of requests and streams whose token the device doesn't take.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/ktp/hostmessages.h"
#include "tests/unit/platform/commtest.h"

namespace {

using namespace lcdtest;
using testing::ElementsAre;

constexpr const char* kLogin = "/zelto/v1/system/auth/login";

// Takes no token but "new", and writes down what it is sent: the token, or the body where that was taken.
class Device {
public:
    explicit Device(std::function<void()> beforeRefusal = {})
        : beforeRefusal_(std::move(beforeRefusal)), server_([this](RawConnection& connection) { serve(connection); }) {}

    std::string url() const { return server_.url(); }
    int refused() const { return refused_; }
    std::vector<std::string> seen() const { return seen_.all(); }

private:
    void serve(RawConnection& connection) {
        while (const auto request = connection.read()) {
            const auto token = request->headers.find("authorization");
            const std::string text = token == request->headers.end() ? "none" : token->second.substr(7);
            const bool good = text == "new";
            seen_.add(good ? text + " " + request->body : text);
            if (!good && beforeRefusal_) {
                beforeRefusal_();
            }
            refused_ += good ? 0 : 1;
            connection.reply(good ? 200 : 401, "{\"code\":0}");
        }
    }

    const std::function<void()> beforeRefusal_;
    std::atomic<int> refused_ = 0;
    Kept<std::string> seen_;
    RawServer server_;
};

class SessionTest : public CommTest {
protected:
    IHttpChannel& start(const std::string& url, int askEveryMs, int waitMs) {
        ktp::HostConfig config = commConfig(url);
        config.settings.set(ktp::kLoginEveryMs, askEveryMs);
        config.settings.set(ktp::kLoginWaitMs, waitMs);
        IHttpChannel& channel = CommTest::start(config);
        channel.setToken("old");
        return channel;
    }
    Answer put(const std::string& body, const char* path = "/zelto/v1/x") {
        Answer answer;
        answer.replied = channel().sendPutRequest(path, nullptr, nullptr, &body, &answer.status, &answer.body, 7);
        return answer;
    }
};

TEST_F(SessionTest, ARefusedRequestGoesOutOnceMoreWithTheNextToken) {
    struct Case {
        const char* name;
        const char* path;
        std::vector<const char*> logins;  // the tokens they bring, one after the other; empty for a failure
        int status;
        std::vector<std::string> sent;
    };
    const Case cases[] = {
        {"a login brings a token", "/x", {"new"}, 200, {"old", "new {}"}},
        {"the first login fails", "/x", {"", "new"}, 200, {"old", "new {}"}},
        {"no login brings one", "/x", {}, 401, {"old"}},
        {"all logins fail", "/x", {"", "", ""}, 401, {"old"}},
        {"the next token is refused, too", "/x", {"bad"}, 401, {"old", "bad"}},
        {"the login itself", kLogin, {"new"}, 401, {"none"}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Device device;
        std::size_t asked = 0;
        ask_ = [&] {
            if (asked < each.logins.size()) {
                channel().setToken(each.logins[asked]);
            }
            ++asked;
        };
        start(device.url(), 20, 200);
        EXPECT_EQ(put("{}", each.path).status, each.status);
        EXPECT_EQ(device.seen(), each.sent);
        const lcdcomm::SessionStatus sums = comm().session();
        EXPECT_EQ(sums.unauthorized, each.path == kLogin ? 0U : static_cast<std::size_t>(device.refused()));
        EXPECT_EQ(sums.resent, each.sent.size() - 1);
        EXPECT_EQ(sums.loginsAsked, asked);
        EXPECT_LE(asked, 200U / 20 + 1);
        EXPECT_GE(asked, each.path == kLogin ? 0U : std::min<std::size_t>(2, each.logins.size()));
        const Watcher::Request told = watcher_.requests.last();
        EXPECT_EQ(told.line, std::string("PUT ") + each.path + " 7 {}");
        EXPECT_EQ(told.reply, std::to_string(each.status) + " {\"code\":0}");
        EXPECT_EQ(told.resent, each.sent.size() == 2);
        EXPECT_TRUE(told.arrived);
    }
}

TEST_F(SessionTest, ATokenThatWasReplacedMeanwhileNeedsNoLogin) {
    Device device([this] { channel().setToken("new"); });
    std::atomic<int> asked = 0;
    ask_ = [&] { ++asked; };
    start(device.url(), 1, 60'000);
    EXPECT_EQ(put("{}").status, 200);
    EXPECT_EQ(asked, 0);
    EXPECT_THAT(device.seen(), ElementsAre("old", "new {}"));
}

TEST_F(SessionTest, WithoutALoginNobodyWaits) {
    const Device device;
    start(device.url(), 1, 60'000);
    EXPECT_EQ(put("{}").status, 401);
    EXPECT_THAT(device.seen(), ElementsAre("old"));
}

TEST_F(SessionTest, AStopWakesWhoWaitsForAToken) {
    const Device device;
    std::atomic<int> asked = 0;
    ask_ = [&] { ++asked; };
    // Waits for its own requests when it is stopped, as every component does.
    std::future<Answer> waiting;
    const ktp::ComponentInfo sender = part("test.sender", [&](const ktp::IMessage& message) {
        if (message.id() == ktp::kSystemStop) {
            waiting.wait();
        }
        return 0;
    });
    ktp::HostConfig config = commConfig(device.url());
    config.settings.set(ktp::kLoginEveryMs, 1);
    config.settings.set(ktp::kLoginWaitMs, 60'000);
    add(config, sender);
    CommTest::start(config).setToken("old");
    waiting = std::async(std::launch::async, [&] { return put("{}"); });
    ASSERT_TRUE(eventually([&] { return asked > 0; }));
    expectStopWithin(kPromptly);
    EXPECT_EQ(waiting.get().status, 401) << "the answer is that of the device";
}

// A stream of these events for who comes with the token "new".
RawServer::Serve streaming(const std::string& events) {
    return [events](RawConnection& connection) {
        const auto request = connection.read();
        if (request->headers.at("authorization") == "Bearer new") {
            connection.send(streamHead() + events);
        } else {
            connection.reply(401, "{}");
        }
        connection.waitForEnd();
    };
}

class StreamSessionTest : public ReceiverTest {};

TEST_F(StreamSessionTest, ARefusedStreamIsAskedForAgainWithTheNextToken) {
    retryMs_ = 60'000;
    RawServer server(streaming(event("e-1", "1")));
    start(server.url(), "old");
    ASSERT_TRUE(eventually([&] { return server.accepted() == 1; }));
    channel().setToken("");
    channel().setToken("new");
    EXPECT_TRUE(eventually([this] { return decoded().size() == 2; })) << "without waiting for a minute";
}

TEST_F(StreamSessionTest, ARefusedStreamAndALostTokenAskForALogin) {
    RawServer server(streaming(event("e-1", "1") + event("f-1", "2")));
    // The first login fails, the second brings a token. No request is ever made.
    std::atomic<int> asked = 0;
    ask_ = [&] { channel().setToken(++asked == 2 ? "new" : ""); };
    busy_ = [] { std::this_thread::sleep_for(5ms); };  // a decoder's work, longer than the pause between two logins
    configure(server.url());
    config_.settings.set(ktp::kLoginEveryMs, 1);
    startConfigured("old");
    EXPECT_TRUE(eventually([&] { return decoded().size() == 4 && asked == 3; }))
        << "a device that is started anew asks for one more";
    EXPECT_EQ(comm().session().unauthorized, 1U);
    EXPECT_EQ(comm().session().loginsAsked, 3U);
}

}  // namespace
