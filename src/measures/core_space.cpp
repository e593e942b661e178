#include "measures/core_space.h"

#include "host/units.h"

double HostUnitsPerMetre() {
    int type = 0;
    float scale = 0;
    GetMasterUnitInfo(&type, &scale);
    return GetMasterScale(type) / (GetMasterScale(UNITS_METERS) * static_cast<double>(scale));
}

TVL::CMatrix4 CoreToHostBase() {
    const double s = HostUnitsPerMetre();
    return kCoreToHostAxes * TVL::CMatrix4::Diagonal(s, s, s, 1);
}

TVL::CMatrix4 ToCore(const Matrix3& matrix) {
    TVL::CMatrix4 wide = TVL::CMatrix4::Identity();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            wide[row][column] = static_cast<double>(matrix.m[row][column]);
    }
    return wide;
}

Matrix3 ToHost(const TVL::CMatrix4& matrix) {
    Matrix3 narrow;
    for (int row = 0; row < 4; ++row) {
        narrow.SetRow(row,
                      Point3(static_cast<float>(matrix[row][0]), static_cast<float>(matrix[row][1]),
                             static_cast<float>(matrix[row][2])));
    }
    narrow.ValidateFlags();
    return narrow;
}
