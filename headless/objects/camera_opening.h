#pragma once

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

}  // namespace headless
