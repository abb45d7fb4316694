// When the mirrors are told that reports may be missing.
#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <random>

#include "lcd/memorycache/constants.h"
#include "platform/ktp/messagecenter.h"
#include "platform/lcdcomm/flights.h"
#include "platform/lcdcomm/resync.h"
#include "tests/unit/platform/commtest.h"

namespace {

using namespace lcdtest;
using lcdcomm::Flights;
using lcdcomm::Resync;
using testing::ElementsAre;

// Requests and gaps at given times, and the times of the messages. All in milliseconds.
class Scene {
public:
    void requestFrom(int start, int end) { requests_.emplace(start, end); }
    void gapAt(int time) { gaps_.push_back(time); }

    std::vector<int> messages(int end) {
        std::vector<int> times;
        std::multimap<int, Flights::Number> ends;
        for (int now = 0; now < end; ++now) {
            const auto [first, last] = requests_.equal_range(now);
            for (auto request = first; request != last; ++request) {
                ends.emplace(request->second, flights_.begin());
            }
            const auto [firstEnd, lastEnd] = ends.equal_range(now);
            for (auto ended = firstEnd; ended != lastEnd; ++ended) {
                flights_.end(ended->second, at(now));
            }
            if (std::count(gaps_.begin(), gaps_.end(), now) != 0) {
                resync_.reportsMayBeMissing(at(now));
            }
            // As the decoder thread does: at a gap, and when it is due.
            if (resync_.due() <= at(now) && resync_.take(at(now))) {
                times.push_back(now);
            }
        }
        return times;
    }

private:
    static Clock::time_point at(int time) {
        return Clock::time_point(std::chrono::hours(1)) + std::chrono::milliseconds(time);
    }

    std::multimap<int, int> requests_;  // start, end
    std::vector<int> gaps_;
    Flights flights_{250ms};
    Resync resync_{250ms, flights_};
};

TEST(ResyncTest, TellsOnceMoreWhenTheRequestsOfThatMomentHaveLanded) {
    Scene scene;
    scene.requestFrom(0, 1100);     // on its way at the gap
    scene.requestFrom(900, 990);    // ended a moment before it: its sender may still take in the reply
    scene.requestFrom(1001, 9000);  // began after it
    scene.gapAt(1000);
    EXPECT_THAT(scene.messages(5000), ElementsAre(1000, 1500));

    Scene quiet;
    quiet.requestFrom(0, 700);
    quiet.gapAt(1000);
    EXPECT_THAT(quiet.messages(5000), ElementsAre(1000));
}

TEST(ResyncTest, LosesNoGapAndNoRequestWhateverComes) {
    std::mt19937 random(7);
    const auto upTo = [&random](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
    for (int round = 0; round < 100; ++round) {
        Scene scene;
        std::vector<int> gaps;
        std::vector<std::pair<int, int>> requests;
        for (int count = upTo(8); count >= 0; --count) {
            gaps.push_back(upTo(3000));
            scene.gapAt(gaps.back());
            const int start = upTo(3000);
            requests.emplace_back(start, start + 1 + upTo(1500));
            scene.requestFrom(start, requests.back().second);
        }
        const std::vector<int> messages = scene.messages(6000);
        const auto toldWithin = [&](int from, int to) {
            return std::any_of(messages.begin(), messages.end(), [=](int time) { return time >= from && time <= to; });
        };
        for (std::size_t next = 1; next < messages.size(); ++next) {
            EXPECT_GE(messages[next] - messages[next - 1], 250);
        }
        for (const int gap : gaps) {
            EXPECT_TRUE(toldWithin(gap, gap + 250)) << "round " << round << ", gap at " << gap;
            for (const auto& [start, end] : requests) {
                if (start < gap && end >= gap) {
                    EXPECT_TRUE(toldWithin(end + 1, 6000))
                        << "round " << round << ", request of " << start << " to " << end;
                }
            }
        }
    }
}

class ReceiverResyncTest : public ReceiverTest {};

TEST_F(ReceiverResyncTest, ComesInItsPlaceAmongTheReports) {
    RawServer server([](RawConnection& connection) {
        connection.read();
        connection.send(streamHead() + event("e-1", "1", "71201", "t", 3) + event("e-2", "[[", "9") +
                        event("e-3", "[3]"));
        connection.waitForEnd();
    });
    std::atomic<int> messages = 0;
    told_ = [&messages](const ktp::IMessage& message) {
        const auto& whole = static_cast<const ktp::Message&>(message);
        if (whole.id() == LCD::MemoryCache::constants::MSG_TOKEN_CLEARED) {
            EXPECT_EQ(whole.sender(), LCD::MemoryCache::constants::OBJ_MEMORYCACHE_USER_NAME);
            ++messages;
        }
        return 0;
    };
    busy_ = [] { std::this_thread::sleep_for(5ms); };  // a decoder's work, longer than the pause between messages
    configure(server.url());
    config_.settings.set(ktp::kResyncEveryMs, 1);
    startConfigured();
    EXPECT_TRUE(eventually([&] { return decoded().size() == 4 && messages == 2; }));
    EXPECT_THAT(watcher_.trail.all(), ElementsAre("stale", "71201 e-1 t3 1", "stale", "71201 e-3 me0 [3]"));
    EXPECT_EQ(status().gated, 1U);
    EXPECT_EQ(status().resyncs, 2U);
}

TEST_F(ReceiverResyncTest, ComesOnceMoreAfterTheRequestsThatItMet) {
    Kept<bool> asked;
    Kept<bool> told;
    RawServer server([&](RawConnection& connection) {
        while (const auto request = connection.read()) {
            if (request->target == "/slow") {
                asked.add(true);
                connection.reply(200, told.waitFor(1) ? "{}" : "");
            } else {
                connection.send(streamHead());
                return connection.waitForEnd();
            }
        }
    });
    configure(server.url());
    config_.settings.set(ktp::kResyncEveryMs, 10);
    startConfigured("");
    std::future<Answer> slow = std::async(std::launch::async, [this] { return get(channel(), "/slow"); });
    ASSERT_TRUE(asked.waitFor(1));
    channel().setToken("token");
    ASSERT_TRUE(eventually([this] { return status().resyncs == 1; })) << "the first connect counts";
    told.add(true);
    EXPECT_TRUE(slow.get().replied);
    EXPECT_TRUE(eventually([this] { return status().resyncs == 2; }));
}

}  // namespace
