#pragma once

#include "headless/scene_view.h"
#include "host/point3.h"
#include "host/types.h"

// Places and times as the Core counts them, and as the host does.
namespace headless {

// Metres, Y up.
struct CorePlace {
    double x = 0;
    double y = 0;
    double z = 0;
};

// To and from the running host's units, in which Z is up.
Point3 InHost(const CorePlace& place);
CorePlace InCore(const PositionView& place);

double MetresBetween(const CorePlace& a, const CorePlace& b);

// The nearest ticks, since a time that the host tells can be a hair below its own; what the host
// cannot count becomes the nearest that it can.
TimeValue NearestTime(double ticks);
TimeValue AtSeconds(double seconds);

// The same, but throws a Failure where the host cannot count that far.
TimeValue CheckedTime(double seconds);

}  // namespace headless
