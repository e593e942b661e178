#pragma once

#include "host/matrix3.h"
#include "tvl/matrix4.h"

// Core space is Y up, in metres, in doubles; host space is Z up, in host units, in floats. Both are
// right-handed. A Core point (x, y, z) is the host point (s·x, −s·z, s·y), with s host units in one
// metre. Nothing here is kept: a change of the host's units shows at the next call.

// s, worked out anew from the host's unit setting.
double HostUnitsPerMetre();

// From Core world space to host world space: the axis change, Core Y being host Z and Core Z host
// −Y, and the factor s. It is the base of every node below the root of the scene.
TVL::CMatrix4 CoreToHostBase();

// A matrix of the Core's as it is taken: the last column is 0, 0, 0, 1 whatever stands in it.
inline TVL::CMatrix4 Affine(TVL::CMatrix4 matrix) {
    for (int row = 0; row < 4; ++row)
        matrix[row][3] = row < 3 ? 0 : 1;
    return matrix;
}

// A world transform of the Core's × CoreToHostBase(), narrowed; the way back is × its inverse. Each
// has the bits that the product has.
Matrix3 ToHostWorld(const TVL::CMatrix4& world);
TVL::CMatrix4 ToCoreWorld(const Matrix3& world);

// A host matrix widened to doubles; the last column is 0, 0, 0, 1. Neither axes nor units change.
inline TVL::CMatrix4 ToCore(const Matrix3& matrix) {
    const auto at = [&](int row, int column) { return static_cast<double>(matrix.m[row][column]); };
    return {{{at(0, 0), at(0, 1), at(0, 2), 0},
             {at(1, 0), at(1, 1), at(1, 2), 0},
             {at(2, 0), at(2, 1), at(2, 2), 0},
             {at(3, 0), at(3, 1), at(3, 2), 1}}};
}

// The first three columns narrowed to floats; the last column is not read.
inline Point3 ToHost(const double* row) {
    return {static_cast<float>(row[0]), static_cast<float>(row[1]), static_cast<float>(row[2])};
}
inline Matrix3 ToHost(const TVL::CMatrix4& matrix) {
    return {ToHost(matrix[0]), ToHost(matrix[1]), ToHost(matrix[2]), ToHost(matrix[3])};
}
