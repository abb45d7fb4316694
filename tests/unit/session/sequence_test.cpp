#include "lcdmemorycacheimpl/session/sequence.h"

#include <gtest/gtest.h>

#include "lcdmemorycacheimpl/engine/echo.h"
#include "tests/support/fakes.h"
#include "tests/support/processguard.h"

namespace {

using namespace LCD::MemoryCacheImpl;
using std::chrono::steady_clock;

TEST(Sequence, numbersRiseOverAllReportsAndTheLastNameHolds) {
    Sequence sequence;
    EXPECT_EQ(sequence.getSeq(0x63703), 0);
    EXPECT_EQ(sequence.getRequestName(0x63703), "");
    sequence.intert(0x63703, "a");
    sequence.intert(0xa2203, "b");
    EXPECT_EQ(drawSequence(sequence, 0x63703, "c"), 3);
    EXPECT_EQ(sequence.getSeq(0xa2203), 2);
    EXPECT_EQ(sequence.getRequestName(0xa2203), "b");
    EXPECT_EQ(sequence.getRequestName(0x63703), "c");
}

TEST(Sequence, aMinuteWithoutADrawStartsTheNumbersAgain) {
    std::atomic<std::int64_t> seconds{1000};
    Sequence sequence([&] { return steady_clock::time_point(std::chrono::seconds(seconds)); });
    sequence.intert(1, "a");
    sequence.intert(2, "b");
    seconds += 60;
    // The timer looks once a second; until then numbers go on rising.
    ASSERT_TRUE(lcdtest::eventually([&] { return drawSequence(sequence, 3, "probe") == 1 || (seconds += 60, false); }));
    EXPECT_EQ(sequence.getSeq(2), 2) << "entries stay as they are";
    EXPECT_EQ(sequence.getRequestName(1), "a");
}

TEST(Echo, ofAnOwnChangeIsForItsRequester) {
    Sequence sequence;
    lcdtest::FakeUser user("mine");
    constexpr std::uint32_t kReport = 0x8112f;
    sequence.intert(1, "other");
    ASSERT_EQ(drawSequence(sequence, kReport, "page"), 2);
    const auto requester = [&](const char* token, int number) {
        return echoRequester(sequence, user, kReport, {token, number});
    };
    EXPECT_EQ(requester("mine", 2), "page");
    EXPECT_EQ(requester("mine", 1), "page") << "an earlier number of this panel counts as its own";
    EXPECT_EQ(requester("mine", 0), "page");
    EXPECT_EQ(requester("mine", 3), "");
    EXPECT_EQ(requester("mine2", 1), "");
    EXPECT_EQ(requester("", 1), "");
    lcdtest::FakeUser loggedOut("");
    EXPECT_EQ(echoRequester(sequence, loggedOut, kReport, {"", 0}), "page");
    EXPECT_EQ(echoRequester(sequence, loggedOut, kReport, {"mine", 0}), "");
}

}  // namespace
