#pragma once

#include "host/matrix3.h"
#include "tvl/matrix4.h"

// Core space is Y up, in metres, in doubles; host space is Z up, in host units, in floats. Both are
// right-handed. A Core point (x, y, z) is the host point (s·x, −s·z, s·y), with s host units in one
// metre. Nothing here is kept: a change of the host's units shows at the next call.

// The axis change alone: Core Y is host Z, Core Z is host −Y.
inline constexpr TVL::CMatrix4 kCoreToHostAxes{
    {{1, 0, 0, 0}, {0, 0, 1, 0}, {0, -1, 0, 0}, {0, 0, 0, 1}}};

// s, worked out anew from the host's unit setting.
double HostUnitsPerMetre();

// From Core world space to host world space: the axis change, then the factor s. It is the base of
// every node below the root of the scene.
TVL::CMatrix4 CoreToHostBase();

// A host matrix widened to doubles; the last column is 0, 0, 0, 1. Neither axes nor units change.
inline TVL::CMatrix4 ToCore(const Matrix3& matrix) {
    TVL::CMatrix4 wide = TVL::CMatrix4::Identity();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            wide[row][column] = static_cast<double>(matrix.m[row][column]);
    }
    return wide;
}

// The first three columns narrowed to floats; the last column is not read.
inline Matrix3 ToHost(const TVL::CMatrix4& matrix) {
    Matrix3 narrow;
    for (int row = 0; row < 4; ++row) {
        narrow.SetRow(row,
                      Point3(static_cast<float>(matrix[row][0]), static_cast<float>(matrix[row][1]),
                             static_cast<float>(matrix[row][2])));
    }
    narrow.ValidateFlags();
    return narrow;
}
