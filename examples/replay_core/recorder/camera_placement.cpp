#include "replay_core/recorder/camera_placement.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

#include "replay_core/recorder/lens_loan.h"
#include "replay_core/recorder/object_scale.h"
#include "replay_core/recorder/transform_loan.h"

namespace replay {
namespace {

constexpr double kLeastRadiusMetres = 0.1;
constexpr double kMargin = 1.2;
constexpr int kAcrossTheHeight = 1;

// A lens that the host does not lend, or one out of the ordinary, counts as the usual one.
double FieldOfView(const LensLoan& lens) {
    const double degrees = lens ? lens->GetFieldOfView() : kUsualFieldOfViewDegrees;
    return degrees > 1 && degrees < 179 ? degrees : kUsualFieldOfViewDegrees;
}

}  // namespace

Surround SurroundOf(std::span<const TVL::CMatrix4> pose) {
    Surround surround;
    double squaredRadius = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double least = std::numeric_limits<double>::max();
        double most = std::numeric_limits<double>::lowest();
        for (const TVL::CMatrix4& joint : pose) {
            least = std::min(least, joint[3][axis]);
            most = std::max(most, joint[3][axis]);
        }
        surround.centre[axis] = (least + most) / 2;
        squaredRadius += (most - least) * (most - least) / 4;
    }
    surround.radius = std::sqrt(squaredRadius);
    return surround;
}

double DistanceToSee(const Surround& subject, double fieldOfViewDegrees) {
    return std::max(subject.radius, kLeastRadiusMetres) * kMargin /
           std::sin(fieldOfViewDegrees / 2 * std::numbers::pi / 180);
}

// A free camera looks along its own −Z, with its X to the right and its Y up. Turned like Core
// space itself it looks along −Z there.
void PlaceCamera(TVL::CoreNode& camera, const Surround& subject, double seconds) {
    const LensLoan lens(camera, seconds);
    const double fieldOfView = FieldOfView(lens);
    const double distance = DistanceToSee(subject, fieldOfView);
    if (lens) {
        lens->SetFieldOfViewType(kAcrossTheHeight);
        // A new camera's optimised controllers begin at 0.
        lens->SetFieldOfView(fieldOfView);
        lens->SetTargetDistance(distance * HostUnitsPerMetre(camera, seconds));
    }

    TVL::CMatrix4 pose = TVL::CMatrix4::Identity();
    for (std::size_t axis = 0; axis < 3; ++axis)
        pose[3][axis] = subject.centre[axis];
    pose[3][2] += distance;
    const ObjectScale scale = ObjectScaleOf(camera, seconds);
    const TransformLoan snapshot(camera, seconds);
    if (snapshot) snapshot->SetWorldTransform(WithObjectScale(pose, scale));
}

}  // namespace replay
