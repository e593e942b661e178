#include "tvl/matrix4.h"

namespace TVL {
namespace {

// The determinant of the 3 by 3 matrix that is left without one row and one column.
double Minor(const CMatrix4& m, int row, int column) {
    int r[3];
    int c[3];
    for (int i = 0; i < 3; ++i) {
        r[i] = i < row ? i : i + 1;
        c[i] = i < column ? i : i + 1;
    }
    return m[r[0]][c[0]] * (m[r[1]][c[1]] * m[r[2]][c[2]] - m[r[1]][c[2]] * m[r[2]][c[1]]) -
           m[r[0]][c[1]] * (m[r[1]][c[0]] * m[r[2]][c[2]] - m[r[1]][c[2]] * m[r[2]][c[0]]) +
           m[r[0]][c[2]] * (m[r[1]][c[0]] * m[r[2]][c[1]] - m[r[1]][c[1]] * m[r[2]][c[0]]);
}

double Cofactor(const CMatrix4& m, int row, int column) {
    const double minor = Minor(m, row, column);
    return (row + column) % 2 == 0 ? minor : -minor;
}

}  // namespace

CMatrix4 operator*(const CMatrix4& left, const CMatrix4& right) {
    CMatrix4 product = CMatrix4::Zero();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            for (int k = 0; k < 4; ++k)
                product[row][column] += left[row][k] * right[k][column];
        }
    }
    return product;
}

double Determinant(const CMatrix4& matrix) {
    double sum = 0;
    for (int column = 0; column < 4; ++column)
        sum += matrix[0][column] * Cofactor(matrix, 0, column);
    return sum;
}

CMatrix4 Inverse(const CMatrix4& matrix) {
    const double determinant = Determinant(matrix);
    CMatrix4 inverse = CMatrix4::Zero();
    if (determinant == 0.0) return inverse;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            inverse[row][column] = Cofactor(matrix, column, row) / determinant;
        }
    }
    return inverse;
}

}  // namespace TVL
