#include "measures/host_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "headless/session.h"
#include "host/interface.h"

namespace {

constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();

TEST(HostClock, SecondsAreTruncatedTowardZeroIntoTicks) {
    const headless::Session session;  // 30 frames of 160 ticks
    EXPECT_EQ(TicksPerSecond(), 4800);
    struct Case {
        double seconds;
        TimeValue ticks;
    };
    for (const Case& one : {Case{0, 0},
                            {1, 4800},
                            {0.0004, 1},
                            {-0.0004, -1},
                            {-0.0001, 0},
                            {std::nan(""), 0},
                            {1e300, kLast},
                            {-1e300, kFirst},
                            {447392.4266, kLast},
                            {HUGE_VAL, kLast},
                            {-HUGE_VAL, kFirst}}) {
        EXPECT_EQ(SnapshotTicks(one.seconds), one.ticks) << one.seconds;
        EXPECT_EQ(HostTicks(one.seconds), one.ticks) << one.seconds;
    }
}

TEST(HostClock, TheTwoFormulasRoundApartAtTheEdgeOfATick) {
    const headless::Session session;
    int apart = 0;
    for (int tick = 1; tick < 20000; ++tick) {
        const double seconds = tick / 4800.0;
        EXPECT_EQ(SnapshotTicks(seconds), static_cast<int>(160 * (30 * seconds)));
        EXPECT_EQ(HostTicks(seconds), static_cast<int>(seconds * 4800));
        if (SnapshotTicks(seconds) != HostTicks(seconds)) ++apart;
    }
    EXPECT_GT(apart, 0);
}

}  // namespace
