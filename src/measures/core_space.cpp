#include "measures/core_space.h"

#include <cmath>

#include "host/units.h"

// Where the base and its inverse are 0, and they are so but for one number in each column, a sum of
// products is that one product and zeros, and never −0. Only a number without end, or none at all,
// times 0 is something else: with such a one the whole product is worked out.

namespace {

// False as well where only the sum of the numbers has no end. They are read one by one, as they may
// just have been written: two at once would have to be in memory first.
bool HasFiniteSum(const TVL::CMatrix4& matrix) {
    double sum = 0;
    for (const auto& row : matrix.rows)
        sum += (row[0] + row[1]) + (row[2] + row[3]);
    return sum * 0 == 0;
}

Point3 ToHostWorld(const double* core, double s) {
    return {static_cast<float>(core[0] * s + 0.0), static_cast<float>(core[2] * -s + 0.0),
            static_cast<float>(core[1] * s + 0.0)};
}

}  // namespace

double HostUnitsPerMetre() {
    int type = 0;
    float scale = 0;
    GetMasterUnitInfo(&type, &scale);
    return GetMasterScale(type) / (GetMasterScale(UNITS_METERS) * static_cast<double>(scale));
}

TVL::CMatrix4 CoreToHostBase() {
    const double s = HostUnitsPerMetre();
    return {{{s, 0, 0, 0}, {0, 0, s, 0}, {0, -s, 0, 0}, {0, 0, 0, 1}}};
}

Matrix3 ToHostWorld(const TVL::CMatrix4& world) {
    if (!HasFiniteSum(world)) return ToHost(Affine(world) * CoreToHostBase());
    const double s = HostUnitsPerMetre();
    return {ToHostWorld(world[0], s), ToHostWorld(world[1], s), ToHostWorld(world[2], s),
            ToHostWorld(world[3], s)};
}

TVL::CMatrix4 ToCoreWorld(const Matrix3& world) {
    const double s = HostUnitsPerMetre();
    const TVL::CMatrix4 wide = ToCore(world);
    const double determinant = s * (s * s);
    if (!HasFiniteSum(wide) || !std::isnormal(determinant)) return wide * Inverse(CoreToHostBase());
    const double back = s * s / determinant;  // 1 / s, as the inverse has it
    TVL::CMatrix4 core = TVL::CMatrix4::Identity();
    for (int row = 0; row < 4; ++row) {
        core[row][0] = wide[row][0] * back + 0.0;
        core[row][1] = wide[row][2] * back + 0.0;
        core[row][2] = wide[row][1] * -back + 0.0;
    }
    return core;
}
