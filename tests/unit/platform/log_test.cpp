// The application's logger.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kt/log.h"
#include "tests/support/logcapture.h"
#include "tests/support/processguard.h"

namespace {

TEST(LogTest, SinksComeAndGoWhileThreadsWrite) {
    KT_INFO("nobody listens");
    const lcdtest::LogCapture kept;
    lcdtest::inThreads(5, [](unsigned thread) {
        for (int line = 0; line < 200; ++line) {
            if (thread < 4) {
                KT_WARN("value {0} of {1}", line, "it");
            } else {
                const lcdtest::LogCapture passing;
            }
        }
    });
    KT::SpdlogApplication::instance().logger()->debug("below the level");

    EXPECT_THAT(kept.lines(), testing::SizeIs(4 * 200));
    EXPECT_THAT(
        kept.lines(),
        testing::Each(testing::MatchesRegex("warning: value [0-9]+ of it \n //log_test\\.cpp:.*\\(\\)#[0-9]+\\.")));
}

}  // namespace
