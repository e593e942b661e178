#include "headless/objects/camera_opening.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace headless {
namespace {

constexpr double kNarrowest = 0.1 * std::numbers::pi / 180;
constexpr double kWidest = 179 * std::numbers::pi / 180;

}  // namespace

CameraOpening OpeningOf(double radians, int fovType, double aspect) {
    const double angle =
        std::isnan(radians) ? kNarrowest : std::clamp(radians, kNarrowest, kWidest);
    const double half = std::tan(angle / 2);
    if (fovType == 0) return {half, half / aspect};
    if (fovType == 1) return {half * aspect, half};
    const double height = half / std::hypot(1, aspect);
    return {height * aspect, height};
}

}  // namespace headless
