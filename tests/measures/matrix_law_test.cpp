// Products and inverses give what their definitions give, to the last bit.

#include <gtest/gtest.h>

#include "headless/session.h"
#include "tests/support/plain_arithmetic.h"

namespace {

TEST(MatrixLaw, ProductsAndInversesHaveTheBitsOfTheirDefinitions) {
    std::mt19937 random(11);
    for (int i = 0; i < 20000; ++i) {
        const Matrix3 a = AnyMatrix(random);
        const Matrix3 b = AnyMatrix(random);
        ASSERT_TRUE(SameBits(a * b, PlainProduct(a, b))) << i;
        ASSERT_TRUE(SameBits(Inverse(a), PlainInverse(a))) << i;
        TVL::CMatrix4 wide = ToCore(a);
        for (int row = 0; row < 4; ++row)
            wide[row][3] += random() % 2 == 0 ? 0 : static_cast<double>(b.m[row][0]);
        ASSERT_TRUE(SameBits(wide * ToCore(b), PlainProduct(wide, ToCore(b)))) << i;
        ASSERT_TRUE(SameBits(Inverse(wide), PlainInverse(wide))) << i;
        double determinant = 0;
        for (int column = 0; column < 4; ++column)
            determinant += wide[0][column] * PlainCofactor(wide, 0, column);
        ASSERT_TRUE(SameBits(Determinant(wide), determinant)) << i;
    }
}

// In units of all kinds, the smallest and the largest that a host takes among them.
TEST(MatrixLaw, TheWayBetweenTheSpacesHasTheBitsOfTheProducts) {
    std::mt19937 random(18);
    for (const float scale : {1.0F, 0.0254F, 12.7F, 1e-38F, 3e38F}) {
        for (int type = 0; type < 7; ++type) {
            const headless::Session session({.unitType = type, .unitScale = scale});
            const TVL::CMatrix4 base = CoreToHostBase();
            for (int i = 0; i < 1000; ++i) {
                const Matrix3 host = AnyMatrix(random);
                TVL::CMatrix4 core = ToCore(host);
                ASSERT_TRUE(SameBits(ToCoreWorld(host), PlainProduct(core, PlainInverse(base))))
                    << type << ' ' << scale << ' ' << i;
                for (double& cell : core.rows[random() % 4])
                    cell *= random() % 4 == 0 ? 1e30 : -1;
                TVL::CMatrix4 taken = core;
                for (int row = 0; row < 4; ++row)
                    taken[row][3] = row == 3;
                core[random() % 4][3] = static_cast<double>(AnyMatrix(random).m[2][1]);
                ASSERT_TRUE(SameBits(ToHostWorld(core), ToHost(PlainProduct(taken, base))))
                    << type << ' ' << scale << ' ' << i;
            }
        }
    }
}

}  // namespace
