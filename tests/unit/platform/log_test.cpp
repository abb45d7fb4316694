// The application's logger.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "kt/log.h"
#include "tests/support/logcapture.h"

namespace {

TEST(LogTest, SinksComeAndGoWhileThreadsWrite) {
    KT_INFO("nobody listens");
    const lcdtest::LogCapture kept;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([] {
            for (int line = 0; line < 200; ++line) {
                KT_WARN("value {0} of {1}", line, "it");
            }
        });
    }
    for (int round = 0; round < 50; ++round) {
        const lcdtest::LogCapture passing;
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    KT::SpdlogApplication::instance().logger()->debug("below the level");

    EXPECT_THAT(kept.lines(), testing::SizeIs(4 * 200));
    EXPECT_THAT(
        kept.lines(),
        testing::Each(testing::MatchesRegex("warning: value [0-9]+ of it \n //log_test\\.cpp:.*\\(\\)#[0-9]+\\.")));
}

}  // namespace
