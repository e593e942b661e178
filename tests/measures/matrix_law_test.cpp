// Products and inverses give what their definitions give, to the last bit.

#include <gtest/gtest.h>

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

}  // namespace
