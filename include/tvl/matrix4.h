#pragma once

namespace TVL {

// A 4 by 4 matrix of doubles, row-major, for row vectors: a point p goes to p' = p × M, a parent is
// multiplied on the right, and the translation stands in row 3. A matrix that an adaptor gives out
// has 0, 0, 0, 1 as its last column, but for the local matrix below a parent that is scaled to
// nothing, which is all zero; the last column of a matrix that it takes is not read.
struct CMatrix4 {
    double rows[4][4];

    static constexpr CMatrix4 Identity() { return Diagonal(1, 1, 1, 1); }
    static constexpr CMatrix4 Zero() { return Diagonal(0, 0, 0, 0); }
    static constexpr CMatrix4 Diagonal(double x, double y, double z, double w) {
        return {{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}, {0, 0, 0, w}}};
    }

    constexpr double* operator[](int row) { return rows[row]; }
    constexpr const double* operator[](int row) const { return rows[row]; }

    friend constexpr bool operator==(const CMatrix4&, const CMatrix4&) = default;
};

// The row-by-column product: first `left`, then `right` for a row vector. Each sum begins with 0
// and goes along the row of `left`.
constexpr CMatrix4 operator*(const CMatrix4& left, const CMatrix4& right) {
    CMatrix4 product = CMatrix4::Zero();
    for (int row = 0; row < 4; ++row) {
        for (int k = 0; k < 4; ++k) {
            for (int column = 0; column < 4; ++column)
                product[row][column] += left[row][k] * right[k][column];
        }
    }
    return product;
}

// The determinant of all four rows and columns.
double Determinant(const CMatrix4& matrix);

// Cofactors over the determinant. A determinant of exactly 0.0 gives the all-zero matrix.
CMatrix4 Inverse(const CMatrix4& matrix);

}  // namespace TVL
