#include <random>

#include "headless/session.h"
#include "measures/core_space.h"
#include "measures/host_clock.h"
#include "measures/quaternion.h"
#include "tests/support/matrices.h"

namespace {

constexpr double kRightAngle = std::numbers::pi / 2;

TEST(CoreSpace, CoreAxesAreInHostUnitsAndAHostMatrixComesBackBitForBit) {
    const headless::Session session(headless::WithUnitsPerMetre(39.37));
    const double s = HostUnitsPerMetre();
    EXPECT_NEAR(s, 39.37, 1e-5);
    const TVL::CMatrix4 base{{{s, 0, 0, 0}, {0, 0, s, 0}, {0, -s, 0, 0}, {0, 0, 0, 1}}};
    EXPECT_EQ(CoreToHostBase(), base);
    const Matrix3 matrix({1, 2, 3}, {0.1F, 5, 6}, {7, 8, 9}, {10, 11, 1e-30F});
    TVL::CMatrix4 wide = ToCore(matrix);
    EXPECT_EQ(wide[1][0], static_cast<double>(0.1F));
    EXPECT_EQ(wide[3][3], 1.0);
    wide[1][3] = 77;  // is not read
    EXPECT_TRUE(ToHost(wide) == matrix && ToHost(wide).flags == matrix.flags);
}

TEST(HostClock, SecondsAreTruncatedTowardZeroIntoTicksByTwoFormulas) {
    const headless::Session session;  // 30 frames of 160 ticks
    const std::pair<double, TimeValue> cases[] = {
        {1, 4800},         {0.0004, 1},      {-0.0004, -1},     {-0.0001, 0},
        {std::nan(""), 0}, {1e300, INT_MAX}, {-1e300, INT_MIN}, {447392.4266, INT_MAX}};
    for (const auto& [seconds, ticks] : cases) {
        EXPECT_EQ(SnapshotTicks(seconds), ticks) << seconds;
        EXPECT_EQ(HostTicks(seconds), ticks) << seconds;
    }
    int apart = 0;
    for (int tick = 1; tick < 20000; ++tick) {
        const double seconds = tick / 4800.0;
        EXPECT_EQ(SnapshotTicks(seconds), static_cast<int>(160 * (30 * seconds)));
        EXPECT_EQ(HostTicks(seconds), static_cast<int>(seconds * 4800));
        if (SnapshotTicks(seconds) != HostTicks(seconds)) ++apart;
    }
    EXPECT_GT(apart, 0) << "they round apart at the edge of a tick";
}

// Half turns about the axes meet the other three sums of the diagonal.
TEST(Quaternion, AMatrixGivesItsRotationBackWhateverTheLengthsOfItsRows) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(-3, 3);
    std::vector<Quaternion> turns = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    for (int i = 0; i < 2000; ++i)
        turns.push_back(WithPositiveW(QuatExp({number(random), number(random), number(random)})));
    for (const Quaternion& q : turns) {
        TVL::CMatrix4 scaled = QuatToMatrix(q);
        for (double& cell : scaled.rows[1])
            cell *= 0.25;
        ExpectNear(QuatFromMatrix(scaled), q, 1e-12);
    }
    // A row of length 0 is the y axis.
    const TVL::CMatrix4 flat{{{0, 0, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    ExpectNear(QuatFromMatrix(flat), QuatExp({0, 0, kRightAngle}), 1e-12);
}

TEST(Quaternion, TurnsForRowVectorsAndGoesTheShorterWay) {
    const TVL::CMatrix4 turn = QuatToMatrix(QuatExp({0, 0, kRightAngle}));
    EXPECT_NEAR(turn[0][1], 1, 1e-15);
    EXPECT_NEAR(QuatLog(QuatFromMatrix(turn)).z, kRightAngle, 1e-15);
    EXPECT_NEAR(QuatLog(QuatExp({0, 0, 3 * kRightAngle})).z, -kRightAngle, 1e-12);
    EXPECT_EQ(QuatLog({0, 0, 0, 1 + 1e-12}).z, 0);
    ExpectNear(QuatExp({0, 0, 0}), Quaternion{}, 0);
    const Quaternion p = QuatExp({0.3, -0.2, 0.9});
    const Quaternion q = QuatExp({-1.1, 0.4, 0.2});
    ExpectNear(QuatFromMatrix(QuatToMatrix(q) * QuatToMatrix(p)), WithPositiveW(p * q), 1e-12);
    ExpectNear(p * Conjugate(p), Quaternion{}, 1e-12);
}

}  // namespace
