#include "measures/saturation.h"

#include <algorithm>
#include <cmath>
#include <limits>

std::int32_t TruncatedToInt32(double value) {
    constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr double kHighest = std::numeric_limits<std::int32_t>::max();
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::clamp(value, kLowest, kHighest));
}
