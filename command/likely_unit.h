#pragma once

namespace headless {

// What captures count in.
struct CaptureUnit {
    double metres;
    const char* name;  // of several
};

// Whether nobody is that low or high, in metres. A point has no height to doubt.
bool IsNobodysHeight(double metres);

// The unit in which a figure of so many comes closest to the height of a person.
CaptureUnit LikelyUnit(double heightInUnits);

}  // namespace headless
