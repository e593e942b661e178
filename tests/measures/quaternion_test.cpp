#include "measures/quaternion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/support/matrices.h"

namespace {

constexpr double kRightAngle = std::numbers::pi / 2;

TEST(Quaternion, EveryBranchOfTheDiagonalGivesTheRotationBack) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(-1, 1);
    for (int i = 0; i < 2000; ++i) {
        const RotationVector r{number(random) * 3, number(random) * 3, number(random) * 3};
        const Quaternion q = WithPositiveW(QuatExp(r));
        ExpectNear(QuatFromMatrix(QuatToMatrix(q)), q, 1e-12);
    }
    // Half turns about the axes, one for each of the other three sums.
    for (const Quaternion& q : {Quaternion{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}})
        ExpectNear(QuatFromMatrix(QuatToMatrix(q)), q, 1e-12);
}

TEST(Quaternion, AQuarterTurnAboutZTurnsXIntoYForRowVectors) {
    const TVL::CMatrix4 turn = QuatToMatrix(QuatExp({0, 0, kRightAngle}));
    EXPECT_NEAR(turn[0][1], 1, 1e-15);
    EXPECT_NEAR(turn[1][0], -1, 1e-15);
    EXPECT_NEAR(QuatLog(QuatFromMatrix(turn)).z, kRightAngle, 1e-15);
}

TEST(Quaternion, RowsOfAnyLengthAreNormalisedAndOneOfLengthZeroIsTheYAxis) {
    const TVL::CMatrix4 scaled{{{0, 4, 0, 0}, {-0.5, 0, 0, 0}, {0, 0, 9, 0}, {1, 2, 3, 1}}};
    ExpectNear(QuatFromMatrix(scaled), QuatExp({0, 0, kRightAngle}), 1e-12);
    const TVL::CMatrix4 flat{{{1, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    ExpectNear(QuatFromMatrix(flat), Quaternion{}, 1e-12);
}

TEST(Quaternion, TheLogarithmGoesTheShorterWayAndBearsRoundingBeyondOne) {
    const RotationVector r = QuatLog(QuatExp({0, 0, 3 * kRightAngle}));
    EXPECT_NEAR(r.z, -kRightAngle, 1e-12);
    const RotationVector none = QuatLog({0, 0, 0, 1 + 1e-12});
    EXPECT_EQ(none.x, 0);
    EXPECT_EQ(none.z, 0);
    EXPECT_EQ(QuatExp(none).w, 1);
}

TEST(Quaternion, AProductTurnsFirstByTheRightFactorsMatrix) {
    const Quaternion p = QuatExp({0.3, -0.2, 0.9});
    const Quaternion q = QuatExp({-1.1, 0.4, 0.2});
    const TVL::CMatrix4 together = QuatToMatrix(p * q);
    const TVL::CMatrix4 apart = QuatToMatrix(q) * QuatToMatrix(p);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            EXPECT_NEAR(together[row][column], apart[row][column], 1e-12);
    }
    ExpectNear(p * Conjugate(p), Quaternion{}, 1e-12);
}

}  // namespace
