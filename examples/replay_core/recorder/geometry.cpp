#include "replay_core/recorder/geometry.h"

#include <algorithm>

namespace replay {

// Across from the axis that is the farthest off, so that nothing comes near zero.
Vector3 AcrossFrom(const Vector3& unit) {
    const auto isNearer = [](double a, double b) { return std::abs(a) < std::abs(b); };
    Vector3 axis{};
    axis[static_cast<std::size_t>(std::ranges::min_element(unit, isNearer) - unit.begin())] = 1;
    const Vector3 across = Cross(unit, axis);
    return Scaled(across, 1 / Length(across));
}

Vector3 DirectionThrough(const Vector3& direction, const TVL::CMatrix4& matrix) {
    Vector3 result{};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            result[static_cast<std::size_t>(column)] +=
                direction[static_cast<std::size_t>(row)] * matrix[row][column];
    return result;
}

Vector3 PointThrough(const Vector3& point, const TVL::CMatrix4& matrix) {
    return Sum(DirectionThrough(point, matrix), PlaceOf(matrix));
}

}  // namespace replay
