#pragma once

#include <vector>

#include "headless/objects/camera_opening.h"
#include "headless/objects/node_drawing.h"

namespace headless {

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
