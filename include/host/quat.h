#pragma once

// A unit quaternion. As a matrix for row vectors, row 0 is (x² − y² − z² + w², 2(xy + wz),
// 2(zx − wy)) and so on round.
struct Quat {
    float x = 0;
    float y = 0;
    float z = 0;
    float w = 1;

    friend constexpr bool operator==(const Quat&, const Quat&) = default;
};
