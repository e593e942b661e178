#include "headless/viewport/view_camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>
#include <utility>
#include <vector>

#include "headless/objects/camera_frame.h"
#include "headless/scene/scene.h"
#include "headless/scene_view.h"
#include "headless/values/vector.h"
#include "headless/viewport/ground_grid.h"
#include "headless/viewport/shown_nodes.h"

namespace headless {
namespace {

constexpr double kRadians = std::numbers::pi / 180;

// The viewport's own camera. It looks a little from aside and from above, so that a walk towards it
// has a length and feet are told from the ground behind them, and leaves a rim free for what sticks
// out of the framed boxes, such as names.
constexpr double kOwnFieldOfView = 35 * kRadians;  // of the height
constexpr double kTurn = 28 * kRadians;            // from straight ahead, towards its right
constexpr double kTilt = 14 * kRadians;            // down
constexpr double kFilled = 0.88;                   // how much of the picture the framed points fill
constexpr double kNearestInMetres = 1;             // to what it looks at, also if that is a dot

// Of a picture, in pixels each way: room for something to show, and no more than renderers have.
constexpr int kSmallest = 16;
constexpr int kLargest = 8192;

// The nearest that shows is at most so many times nearer than the farthest, for the sake of the
// depth buffer's precision; the margin keeps what lies at either end from being cut by rounding.
constexpr double kDepthRatio = 4000;
constexpr double kDepthMargin = 1.05;

// Where a camera stands and how it is turned; unit vectors at right angles.
struct Pose {
    Vector place;
    Vector right;
    Vector up;
    Vector ahead;
};

Vector Unit(const Vector& v) {
    return v * (1 / std::sqrt(Dot(v, v)));
}

std::vector<Vector> CornersOf(const std::vector<Box3>& boxes) {
    std::vector<Vector> points;
    for (const Box3& box : boxes)
        std::ranges::copy(Corners(box), std::back_inserter(points));
    return points;
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

// Moves the camera back until every point is inside its opening, and no farther.
Vector PlaceToSee(const Pose& turned, const CameraOpening& opening, std::vector<Vector> points) {
    if (points.empty()) points.emplace_back();
    const Spread across(points, turned.right, turned.ahead);
    const Spread upward(points, turned.up, turned.ahead);
    const double distance =
        std::max({across.Distance(opening.x), upward.Distance(opening.y),
                  kNearestInMetres * UnitsPerMetre() - std::ranges::min(across.depth)});
    return turned.right * across.Middle(distance) + turned.up * upward.Middle(distance) -
           turned.ahead * distance;
}

double Aspect(const ViewportSettings& settings) {
    return static_cast<double>(settings.width) / settings.height;
}

bool IsPictureSize(int pixels) {
    return pixels >= kSmallest && pixels <= kLargest;
}

Pose OwnPose() {
    Pose pose;
    pose.ahead = {-std::sin(kTurn) * std::cos(kTilt), std::cos(kTurn) * std::cos(kTilt),
                  -std::sin(kTilt)};
    pose.right = Unit(Cross(pose.ahead, {0, 0, 1}));
    pose.up = Cross(pose.right, pose.ahead);
    return pose;
}

// False if the matrix gives no direction to look in. Scales and mirrored axes do not count.
bool PoseOf(const Matrix3& world, Pose& pose) {
    const Vector back(world.GetRow(2));
    const Vector right = Cross(Vector(world.GetRow(1)), back);
    const double size = Dot(back, back) * Dot(right, right);
    if (!std::isfinite(size) || size < std::numeric_limits<double>::min()) return false;
    pose.place = Vector(world.GetTrans());
    if (!(std::sqrt(Dot(pose.place, pose.place)) <= double{kFarthest})) return false;
    pose.ahead = Unit(back) * -1;
    pose.right = Unit(right);
    pose.up = Cross(pose.right, pose.ahead);
    return true;
}

struct Depths {
    double nearest = 0;
    double farthest = 0;
};

// Around all that shows, and the ground.
Depths DepthsFrom(const Pose& pose, const GroundGrid& grid, TimeValue t) {
    std::vector<Box3> boxes = ShownBoxes(t);
    boxes.push_back(grid.area);
    Depths depths{std::numeric_limits<double>::max(), UnitsPerMetre()};
    for (const Vector& p : CornersOf(boxes)) {
        const double depth = Dot(p - pose.place, pose.ahead);
        depths.nearest = std::min(depths.nearest, depth);
        depths.farthest = std::max(depths.farthest, depth);
    }
    depths.farthest *= kDepthMargin;
    depths.nearest = std::clamp(depths.nearest / kDepthMargin, depths.farthest / kDepthRatio,
                                depths.farthest / 2);
    return depths;
}

View ViewFrom(const Pose& pose, const CameraOpening& opening, const Depths& depths,
              const ViewportSettings& settings) {
    const double sum = depths.farthest + depths.nearest;
    const double span = depths.farthest - depths.nearest;
    // Rows are made from what becomes clip x, y, z and w of a point, as columns.
    const auto row = [&](double right, double up, double ahead, double fixed) {
        return std::array<float, 4>{
            static_cast<float>(right / opening.x), static_cast<float>(up / opening.y),
            static_cast<float>((ahead * sum - fixed * 2 * depths.farthest * depths.nearest) / span),
            static_cast<float>(ahead)};
    };
    View view{.width = settings.width, .height = settings.height};
    view.toClip = {row(pose.right.x, pose.up.x, pose.ahead.x, 0),
                   row(pose.right.y, pose.up.y, pose.ahead.y, 0),
                   row(pose.right.z, pose.up.z, pose.ahead.z, 0),
                   row(-Dot(pose.place, pose.right), -Dot(pose.place, pose.up),
                       -Dot(pose.place, pose.ahead), 1)};
    return view;
}

AimedView Failed(std::string error) {
    AimedView none;
    none.error = std::move(error);
    return none;
}

std::vector<SceneNode*> CamerasCalled(const std::string& name, TimeValue t) {
    std::vector<SceneNode*> cameras = TheScene().InOrder();
    std::erase_if(cameras,
                  [&](SceneNode* node) { return node->Name() != name || !CameraOf(*node, t); });
    return cameras;
}

AimedView ThroughCamera(const ViewportSettings& settings, TimeValue t) {
    const std::string called = '"' + settings.camera + '"';
    if (!FindNode(settings.camera)) return Failed("no node is called " + called);
    const std::vector<SceneNode*> cameras = CamerasCalled(settings.camera, t);
    if (cameras.empty()) return Failed("the node " + called + " is no camera");
    if (cameras.size() > 1)
        return Failed(std::to_string(cameras.size()) + " cameras are called " + called);
    SceneNode* const node = cameras.front();
    CameraObject* const camera = CameraOf(*node, t);
    Pose pose;
    Interval valid;
    const double angle = double{camera->GetFOV(t, valid)};
    if (!PoseOf(node->GetNodeTM(t, nullptr), pose) || !std::isfinite(angle))
        return Failed("the camera \"" + settings.camera + "\" looks nowhere at that time");
    const CameraOpening opening = OpeningOf(angle, camera->GetFOVType(), Aspect(settings));
    AimedView aimed;
    aimed.grid = GridBelow(FramedBoxes(settings, t));
    aimed.view = ViewFrom(pose, opening, DepthsFrom(pose, aimed.grid, t), settings);
    aimed.camera = node;
    return aimed;
}

AimedView FromFrontAndAbove(const ViewportSettings& settings, TimeValue t) {
    const std::vector<Box3> framed = FramedBoxes(settings, t);
    const CameraOpening opening = OpeningOf(kOwnFieldOfView, 1, Aspect(settings));
    Pose pose = OwnPose();
    pose.place = PlaceToSee(pose, {opening.x * kFilled, opening.y * kFilled}, CornersOf(framed));
    AimedView aimed;
    aimed.grid = GridBelow(framed);
    aimed.view = ViewFrom(pose, opening, DepthsFrom(pose, aimed.grid, t), settings);
    return aimed;
}

}  // namespace

AimedView AimView(const ViewportSettings& settings, TimeValue t) {
    if (!IsPictureSize(settings.width) || !IsPictureSize(settings.height))
        return Failed("a picture is 16 to 8,192 pixels wide and high");
    if (!settings.camera.empty()) return ThroughCamera(settings, t);
    return FromFrontAndAbove(settings, t);
}

}  // namespace headless
