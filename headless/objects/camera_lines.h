#pragma once

#include <vector>

#include "objects/node_drawing.h"

namespace headless {

// What a camera sees at some distance before it: a rectangle across its line of sight.
struct CameraFrame {
    float distance = 0;
    float halfWidth = 0;
    float halfHeight = 0;
};

// Of a field of view in radians that is measured by `fovType`: 0 across the width, 1 the height, 2
// the diagonal of a picture that is `aspect` times as wide as high. An angle below nothing, or one
// that is no number, counts as nothing, one of half a turn or more as a little less.
CameraFrame FrameAt(float distance, float radians, int fovType, float aspect);

// From the camera to the corners of the frame, and around it.
void AddCone(const CameraFrame& frame, std::vector<Line>& lines);

// Across the frame, where places at the height of the camera are seen; nothing if they are not.
void AddHorizon(const CameraFrame& frame, const Matrix3& cameraToWorld, std::vector<Line>& lines);

}  // namespace headless
