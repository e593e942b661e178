#include "tvl/matrix4.h"

namespace TVL {
namespace {

// The determinants of two rows, for each pair of columns.
struct RowPair {
    RowPair(const double* upper, const double* lower) {
        for (int a = 0; a < 3; ++a) {
            for (int b = a + 1; b < 4; ++b)
                of[a][b] = upper[a] * lower[b] - upper[b] * lower[a];
        }
    }
    double of[3][4];  // the later column second; the rest is not set
};

// The minors of a row, for each column that is left out: the first of the other rows times the
// determinants of the last two, with the sign of the cofactor, which is `sign` in column 0.
struct Cofactors {
    Cofactors(double sign, const double* first, const RowPair& last)
        : in{sign * Minor(first, last, 1, 2, 3), -sign * Minor(first, last, 0, 2, 3),
             sign * Minor(first, last, 0, 1, 3), -sign * Minor(first, last, 0, 1, 2)} {}
    double in[4];

  private:
    static double Minor(const double* first, const RowPair& last, int a, int b, int c) {
        return first[a] * last.of[b][c] - first[b] * last.of[a][c] + first[c] * last.of[a][b];
    }
};

// Of the first row.
Cofactors TopCofactors(const CMatrix4& m, const RowPair& lastRows) {
    return {1, m[1], lastRows};
}

double Along(const double* row, const Cofactors& cofactors) {
    double sum = 0;
    for (int column = 0; column < 4; ++column)
        sum += row[column] * cofactors.in[column];
    return sum;
}

}  // namespace

double Determinant(const CMatrix4& matrix) {
    return Along(matrix[0], TopCofactors(matrix, RowPair(matrix[2], matrix[3])));
}

CMatrix4 Inverse(const CMatrix4& m) {
    const RowPair lastRows(m[2], m[3]);
    const Cofactors cofactors[4] = {TopCofactors(m, lastRows),
                                    {-1, m[0], lastRows},
                                    {1, m[0], RowPair(m[1], m[3])},
                                    {-1, m[0], RowPair(m[1], m[2])}};
    const double determinant = Along(m[0], cofactors[0]);
    CMatrix4 inverse = CMatrix4::Zero();
    if (determinant == 0.0) return inverse;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            inverse[row][column] = cofactors[column].in[row] / determinant;
    }
    return inverse;
}

}  // namespace TVL
