// The oracle: after any storm of changes each mirror equals the device.
#include <gtest/gtest.h>

#include "tests/support/storm.h"

namespace {

using namespace lcdtest;
using panel::After;

constexpr int kChanges = kSanitized ? 400 : 2000;  // of each component

TEST(Storm, leavesEveryMirrorEqualToTheDevice) {
    RealParts real;
    real.start();
    real.openAllPages();
    const auto fetches = [&] {
        long sum = 0;
        for (const char* each : {"system/detail", "screen/global/switch-effect", "screen/global/swap"}) {
            sum += real.sim.requests("GET", std::string("/zelto/v1/") + each);
        }
        return sum;
    };
    const long before = fetches();
    Storm(real, 20).run(kChanges);
    EXPECT_TRUE(real.holds(After::traffic));
    EXPECT_EQ(fetches(), before) << "reports alone keep these";
    real.resync();
    EXPECT_TRUE(real.holds(After::resync));
    EXPECT_EQ(real.session.status().channel().failures, 0U);
}

TEST(Storm, leavesEveryMirrorEqualThoughReportsGetLost) {
    RealParts real;
    real.start();
    real.openAllPages();
    real.sim.addFault({{{"kind", "drop"}, {"probability", 0.01}, {"random", 4}},
                       {{"kind", "duplicate"}, {"probability", 0.01}, {"random", 5}},
                       {{"kind", "late"}, {"reports", 3}, {"probability", 0.01}, {"random", 6}},
                       {{"kind", "malformed"}, {"probability", 0.01}, {"random", 7}},
                       {{"kind", "cutStream"}, {"path", "e0100"}, {"probability", 0.005}, {"random", 8}}});
    Storm storm(real, 21);
    storm.run(kChanges);
    real.sim.removeFaults();
    storm.change();  // what was lost last shows by the numbers of these reports
    EXPECT_TRUE(real.holds(After::resync));
    const auto receiver = real.session.status().receiver();
    EXPECT_GT(receiver.connects, 1U);
    EXPECT_GT(receiver.late, 0U);
    EXPECT_GT(receiver.malformed + receiver.gated, 0U);
}

}  // namespace
