#include "replay_core/recorder/take_camera.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <span>

#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/transform_parts.h"

namespace replay {

namespace {

constexpr double kLeastRadiusMetres = 0.1;  // of a figure that is a point, almost
constexpr double kMargin = 1.2;             // what is drawn reaches beyond the joints
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

namespace {

constexpr double kEvenedOutSeconds = 0.5;        // to either side
constexpr Vector3 kFromSubject = {0.6, 0.3, 1};  // so that no limb hides the other for long
constexpr double kViewMargin = 1.25;             // what is drawn reaches beyond the joints
constexpr double kNarrowestDegrees = 5;          // beyond these a host's camera shows little of use
constexpr double kWidestDegrees = 150;

// The frames around one, as many to either side as there are on the shorter one, so that what is
// evened out over them lags behind nothing.
template <class Value>
std::span<const Value> Around(std::span<const Value> values, std::size_t frame, std::size_t reach) {
    const std::size_t side = std::min({reach, frame, values.size() - 1 - frame});
    return values.subspan(frame - side, 2 * side + 1);
}

Vector3 Mean(std::span<const Vector3> places) {
    Vector3 sum{};
    for (const Vector3& place : places)
        sum = Sum(sum, place);
    return Scaled(sum, 1 / static_cast<double>(places.size()));
}

double Mean(std::span<const double> numbers) {
    double sum = 0;
    for (const double number : numbers)
        sum += number;
    return sum / static_cast<double>(numbers.size());
}

template <class Value>
std::vector<Value> EvenedOut(std::span<const Value> values, std::size_t reach) {
    std::vector<Value> even;
    for (std::size_t frame = 0; frame < values.size(); ++frame)
        even.push_back(Mean(Around(values, frame, reach)));
    return even;
}

// Even, and nowhere less than what is given: the mean, over a stretch around a frame, of what is
// the greatest within the same reach of each of its frames.
std::vector<double> EvenedOutAbove(std::span<const double> values, std::size_t reach) {
    std::vector<double> greatest;
    for (std::size_t frame = 0; frame < values.size(); ++frame) {
        const std::size_t first = frame - std::min(reach, frame);
        const std::size_t end = std::min(frame + reach + 1, values.size());
        greatest.push_back(std::ranges::max(values.subspan(first, end - first)));
    }
    return EvenedOut(std::span<const double>(greatest), reach);
}

// Upright at a place, looking along its −Z, the other way than `back`, which is not straight up.
TVL::CMatrix4 LookingFrom(const Vector3& place, const Vector3& back) {
    const Vector3 z = Scaled(back, 1 / Length(back));
    const Vector3 across = Cross({0, 1, 0}, z);
    const Vector3 x = Scaled(across, 1 / Length(across));
    const Vector3 y = Cross(z, x);
    return {{{x[0], x[1], x[2], 0},
             {y[0], y[1], y[2], 0},
             {z[0], z[1], z[2], 0},
             {place[0], place[1], place[2], 1}}};
}

double Ahead(const TVL::CMatrix4& camera, const Vector3& place) {
    const Vector3 back = {camera[2][0], camera[2][1], camera[2][2]};
    return -Dot(Difference(place, PlaceOf(camera)), back);
}

// Between the middle of the picture and what is farthest off it, in degrees.
double WidestAngle(const TVL::CMatrix4& camera, std::span<const TVL::CMatrix4> pose) {
    double widest = 0;
    for (const TVL::CMatrix4& joint : pose) {
        const Vector3 place = PlaceOf(joint);
        const double ahead = Ahead(camera, place);
        const double distance = Length(Difference(place, PlaceOf(camera)));
        const double aside = std::sqrt(std::max(0.0, distance * distance - ahead * ahead));
        widest = std::max(widest, std::atan2(aside, ahead));
    }
    return widest * 180 / std::numbers::pi;
}

// From what the camera looks at, to the camera: so far that the figure is in view of a usual lens
// in every frame, however far it gets off its evened out way.
Vector3 FromSubject(std::span<const Vector3> middles, std::span<const double> radii,
                    std::span<const Vector3> way) {
    Surround largest;
    for (std::size_t i = 0; i < way.size(); ++i)
        largest.radius =
            std::max(largest.radius, radii[i] + Length(Difference(middles[i], way[i])));
    return Scaled(kFromSubject,
                  DistanceToSee(largest, kUsualFieldOfViewDegrees) / Length(kFromSubject));
}

}  // namespace

std::vector<CameraMoment> FollowTake(const Motion& motion, FrameRange frames, MeantPoses& poses,
                                     double hostUnitsPerMetre) {
    std::vector<Vector3> middles;
    std::vector<double> radii;
    for (std::size_t frame = frames.first; frame < frames.end; ++frame) {
        const Surround surround = SurroundOf(poses.At(frame));
        middles.push_back(surround.centre);
        radii.push_back(surround.radius);
    }
    const auto reach = static_cast<std::size_t>(
        std::min(kEvenedOutSeconds / motion.frameSeconds, static_cast<double>(frames.Count())));
    const std::vector<Vector3> way = EvenedOut(std::span<const Vector3>(middles), reach);
    const Vector3 fromSubject = FromSubject(middles, radii, way);

    std::vector<CameraMoment> moments;
    std::vector<double> fieldsOfView;
    for (std::size_t i = 0; i < way.size(); ++i) {
        CameraMoment& moment = moments.emplace_back();
        moment.pose = LookingFrom(Sum(way[i], fromSubject), fromSubject);
        moment.targetDistance = Ahead(moment.pose, middles[i]) * hostUnitsPerMetre;
        fieldsOfView.push_back(
            std::clamp(2 * kViewMargin * WidestAngle(moment.pose, poses.At(frames.first + i)),
                       kNarrowestDegrees, kWidestDegrees));
    }
    const std::vector<double> even = EvenedOutAbove(fieldsOfView, reach);
    for (std::size_t i = 0; i < moments.size(); ++i)
        moments[i].fieldOfViewDegrees = even[i];
    return moments;
}

void WriteMoment(TVL::CoreNode& camera, const CameraMoment& moment, const ObjectScale& scale,
                 double seconds) {
    if (const TransformLoan snapshot(camera, seconds); snapshot)
        snapshot->SetWorldTransform(WithObjectScale(moment.pose, scale));
    const LensLoan lens(camera, seconds);
    if (!lens) return;
    lens->SetFieldOfView(moment.fieldOfViewDegrees);
    lens->SetTargetDistance(moment.targetDistance);
}

void SettleLens(TVL::CoreNode& camera, double lastSeconds) {
    const LensLoan lens(camera, lastSeconds);
    if (!lens) return;
    lens->GetFieldOfView();
    lens->GetTargetDistance();
}

}  // namespace replay
