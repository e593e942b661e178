#pragma once

#include <vector>

#include "headless/objects/camera_frame.h"
#include "headless/values/vector.h"
#include "headless/viewport.h"

// The viewport's own camera: where it must stand to hold what it is to show.
namespace headless {

// Where a camera stands and how it is turned; unit vectors at right angles, host units.
struct Pose {
    Vector place;
    Vector right;
    Vector up;
    Vector ahead;
};

Pose PoseFrom(ViewSide side);  // without a place
CameraOpening OwnOpening(const ViewportSettings& settings);

// Moves the camera back until every point is inside its opening but for a rim, and no farther. The
// rim is for what sticks out of the points, such as names.
Vector PlaceToSee(const Pose& turned, const CameraOpening& opening, std::vector<Vector> points);

// Of many points those that decide where it stands.
std::vector<Vector> Outermost(const Pose& turned, const CameraOpening& opening,
                              const std::vector<Vector>& points);

// Where the camera of a path is at a time. The path has times.
Vector PlaceOn(const CameraPath& path, TimeValue t);

}  // namespace headless
