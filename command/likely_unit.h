#pragma once

namespace headless {

// What captures count in.
struct CaptureUnit {
    double metres;
    const char* name;  // of several
};

// Whether nobody stands that low or high at the start of a capture, in metres. A point has no
// height to doubt.
bool IsNobodysHeight(double metres);

// The unit in which a figure of so many comes closest to the height of a person.
CaptureUnit LikelyUnit(double heightInUnits);

}  // namespace headless
