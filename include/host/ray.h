#pragma once

#include "host/point3.h"

// A half line. The direction need not have unit length; distances along it count in its lengths.
struct Ray {
    Point3 p;
    Point3 dir;
};
