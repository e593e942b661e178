#pragma once

#include <algorithm>

#include "host/units.h"

namespace headless {

// Host units in a metre, by which a picture is laid out. Of a scene with a unit that is beyond all
// that people measure, the nearest that a picture can be made with.
inline double UnitsPerMetre() {
    return std::clamp(1 / GetMasterScale(UNITS_METERS), 1e-9, 1e9);
}

}  // namespace headless
