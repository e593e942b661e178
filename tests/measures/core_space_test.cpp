#include "measures/core_space.h"

#include <gtest/gtest.h>

#include "headless/session.h"

namespace {

constexpr double kUnits = 39.37;

TEST(CoreSpace, CoreAxesComeOutInHostUnitsOnTheHostsAxes) {
    const headless::Session session(headless::WithUnitsPerMetre(kUnits));
    const double s = HostUnitsPerMetre();
    EXPECT_NEAR(s, kUnits, 1e-5);
    const TVL::CMatrix4 expected{{{s, 0, 0, 0}, {0, 0, s, 0}, {0, -s, 0, 0}, {0, 0, 0, 1}}};
    EXPECT_EQ(CoreToHostBase(), expected);
}

TEST(CoreSpace, AHostMatrixComesBackBitForBitAndTheLastColumnIsNotRead) {
    Matrix3 matrix({1, 2, 3}, {0.1f, 5, 6}, {7, 8, 9}, {10, 11, 1e-30f});
    TVL::CMatrix4 wide = ToCore(matrix);
    EXPECT_EQ(wide[1][0], static_cast<double>(0.1f));
    EXPECT_EQ(wide[3][3], 1.0);
    for (int row = 0; row < 4; ++row)
        wide[row][3] = 77;
    EXPECT_EQ(ToHost(wide), matrix);
    EXPECT_EQ(ToHost(wide).flags, matrix.flags);
}

}  // namespace
