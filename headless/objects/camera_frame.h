#pragma once

#include <vector>

#include "headless/objects/node_drawing.h"

namespace headless {

// Half the width and half the height of what a camera sees at a distance of 1.
struct CameraOpening {
    double x = 1;
    double y = 1;
};

// Of a field of view in radians that is measured by `fovType`: 0 across the width, 1 the height, 2
// the diagonal of a picture that is `aspect` times as wide as high. An angle is taken as a tenth of
// a degree at least, as which one that is no number counts, and as 179 degrees at most.
CameraOpening OpeningOf(double radians, int fovType, double aspect);

// What a camera sees at some distance before it: a rectangle across its line of sight.
struct CameraFrame {
    float distance = 0;
    float halfWidth = 0;
    float halfHeight = 0;
};

CameraFrame FrameAt(float distance, const CameraOpening& opening);

// From the camera to the corners of the frame, and around it.
void AddCone(const CameraFrame& frame, std::vector<Line>& lines);

// Across the frame, where places at the height of the camera are seen; nothing if they are not.
void AddHorizon(const CameraFrame& frame, const Matrix3& cameraToWorld, std::vector<Line>& lines);

}  // namespace headless
