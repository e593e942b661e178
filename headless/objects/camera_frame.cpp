#include "headless/objects/camera_frame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace headless {
namespace {

constexpr double kNarrowest = 0.1 * std::numbers::pi / 180;
constexpr double kWidest = 179 * std::numbers::pi / 180;

// A run of places at + s × along.
struct Run {
    float first = -std::numeric_limits<float>::max();
    float last = std::numeric_limits<float>::max();

    // Keeps what lies between -limit and limit on one axis.
    void Cut(float at, float along, float limit) {
        if (along == 0) {
            if (std::abs(at) > limit) last = first;
            return;
        }
        const float one = (-limit - at) / along;
        const float other = (limit - at) / along;
        first = std::max(first, std::min(one, other));
        last = std::min(last, std::max(one, other));
    }
};

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

CameraFrame FrameAt(float distance, const CameraOpening& opening) {
    return {distance, static_cast<float>(double{distance} * opening.x),
            static_cast<float>(double{distance} * opening.y)};
}

void AddCone(const CameraFrame& frame, std::vector<Line>& lines) {
    const auto [distance, w, h] = frame;
    const std::vector<Point3> around{
        {-w, -h, -distance}, {w, -h, -distance}, {w, h, -distance}, {-w, h, -distance}};
    for (std::size_t i = 0; i < around.size(); ++i) {
        lines.push_back({{}, around[i]});
        lines.push_back({around[i], around[(i + 1) % around.size()]});
    }
}

// The frame's places (x, y) at the camera's height are those with x·up.x + y·up.y = distance·up.z,
// where `up` is the scene's up in the camera's axes.
void AddHorizon(const CameraFrame& frame, const Matrix3& cameraToWorld, std::vector<Line>& lines) {
    const Point3 up =
        Normalize({cameraToWorld.m[0][2], cameraToWorld.m[1][2], cameraToWorld.m[2][2]});
    const float square = up.x * up.x + up.y * up.y;
    if (!(square > 0)) return;
    const float away = frame.distance * up.z / square;
    const float x = up.x * away;
    const float y = up.y * away;
    Run run;
    run.Cut(x, up.y, frame.halfWidth);
    run.Cut(y, -up.x, frame.halfHeight);
    if (!(run.first < run.last)) return;
    const auto at = [&](float s) { return Point3(x + s * up.y, y - s * up.x, -frame.distance); };
    lines.push_back({at(run.first), at(run.last)});
}

}  // namespace headless
