#include "headless/viewport/own_camera.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <utility>

#include "headless/viewport/ground_grid.h"

namespace headless {
namespace {

constexpr double kRadians = std::numbers::pi / 180;

// From a quarter it looks a little from aside and from above, so that a walk towards it has a
// length and feet are told from the ground behind them.
constexpr double kFieldOfView = 35 * kRadians;  // of the height
constexpr double kQuarterTurn = 28 * kRadians;  // from straight ahead, towards its right
constexpr double kQuarterTilt = 14 * kRadians;  // down
constexpr double kFilled = 0.88;                // how much of the picture the framed points fill
constexpr double kNearestInMetres = 1;          // to what it looks at, also if that is a dot

Pose Turned(double turn, double tilt) {
    Pose pose;
    pose.ahead = {-std::sin(turn) * std::cos(tilt), std::cos(turn) * std::cos(tilt),
                  -std::sin(tilt)};
    pose.right = {std::cos(turn), std::sin(turn), 0};
    pose.up = Cross(pose.right, pose.ahead);
    return pose;
}

// How points lie along one axis of the picture and behind each other, from any place along the
// view.
struct Spread {
    std::vector<double> across;
    std::vector<double> depth;

    Spread(const std::vector<Vector>& points, const Vector& axis, const Vector& ahead) {
        for (const Vector& p : points) {
            across.push_back(Dot(p, axis));
            depth.push_back(Dot(p, ahead));
        }
    }

    // How far back a camera has to be to have them all inside its opening, wherever it stands
    // across: a point at x is inside if |x - middle| <= opening × (distance + depth).
    double Distance(double opening) const {
        double lower = std::numeric_limits<double>::max();
        double upper = std::numeric_limits<double>::lowest();
        for (std::size_t i = 0; i < across.size(); ++i) {
            lower = std::min(lower, across[i] + opening * depth[i]);
            upper = std::max(upper, across[i] - opening * depth[i]);
        }
        return (upper - lower) / (2 * opening);
    }

    // Where to stand across at that distance for equal margins on both sides; found by halving.
    double Middle(double distance) const {
        constexpr int kHalvings = 40;
        auto [lower, upper] = std::ranges::minmax(across);
        for (int i = 0; i < kHalvings; ++i) {
            const double middle = (lower + upper) / 2;
            (LeansAbove(middle, distance) ? lower : upper) = middle;
        }
        return (lower + upper) / 2;
    }

    bool LeansAbove(double middle, double distance) const {
        double below = 0;
        double above = 0;
        for (std::size_t i = 0; i < across.size(); ++i) {
            const double slope = (across[i] - middle) / (distance + depth[i]);
            below = std::min(below, slope);
            above = std::max(above, slope);
        }
        return above > -below;
    }
};

}  // namespace

Pose PoseFrom(ViewSide side) {
    switch (side) {
        case ViewSide::kFront:
            return Turned(0, 0);
        case ViewSide::kSide:
            return Turned(90 * kRadians, 0);
        case ViewSide::kTop:
            return Turned(0, 90 * kRadians);
        case ViewSide::kQuarter:
            break;
    }
    return Turned(kQuarterTurn, kQuarterTilt);
}

CameraOpening OwnOpening(const ViewportSettings& settings) {
    return OpeningOf(kFieldOfView, 1, static_cast<double>(settings.width) / settings.height);
}

Vector PlaceToSee(const Pose& turned, const CameraOpening& opening, std::vector<Vector> points) {
    if (points.empty()) points.emplace_back();
    const CameraOpening filled{opening.x * kFilled, opening.y * kFilled};
    const Spread across(points, turned.right, turned.ahead);
    const Spread upward(points, turned.up, turned.ahead);
    const double distance =
        std::max({across.Distance(filled.x), upward.Distance(filled.y),
                  kNearestInMetres * UnitsPerMetre() - std::ranges::min(across.depth)});
    return turned.right * across.Middle(distance) + turned.up * upward.Middle(distance) -
           turned.ahead * distance;
}

std::vector<Vector> Outermost(const Pose& turned, const CameraOpening& opening,
                              const std::vector<Vector>& points) {
    std::vector<Vector> kept;
    if (points.empty()) return kept;
    for (const auto& [axis, wide] :
         {std::pair(turned.right, opening.x), std::pair(turned.up, opening.y)})
        for (const double share : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
            const Vector outwards = axis + turned.ahead * (wide * kFilled * share);
            const auto [least, most] = std::ranges::minmax_element(
                points, {}, [&](const Vector& p) { return Dot(p, outwards); });
            kept.push_back(*least);
            kept.push_back(*most);
        }
    kept.push_back(*std::ranges::min_element(
        points, {}, [&](const Vector& p) { return Dot(p, turned.ahead); }));
    return kept;
}

Vector PlaceOn(const CameraPath& path, TimeValue t) {
    const auto next = std::ranges::lower_bound(path.times, t) - path.times.begin();
    return Vector(path.places[std::min(static_cast<std::size_t>(next), path.places.size() - 1)]);
}

}  // namespace headless
