#pragma once

#include "host/host_api.h"
#include "host/matrix3.h"
#include "host/point3.h"

// A box along the axes; new ones are empty (the lower corner above the upper).
class HOST_API Box3 {
  public:
    Box3();
    Box3(const Point3& lower, const Point3& upper) : pmin(lower), pmax(upper) {}

    bool IsEmpty() const;
    Box3& operator+=(const Point3& p);

    // The box around the transformed corners; an empty box stays empty.
    Box3 operator*(const Matrix3& matrix) const;

    Point3 pmin;
    Point3 pmax;
};
