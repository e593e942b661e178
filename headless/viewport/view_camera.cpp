#include "headless/viewport/view_camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "headless/objects/camera_frame.h"
#include "headless/scene/scene.h"
#include "headless/scene_view.h"
#include "headless/values/vector.h"
#include "headless/viewport/ground_grid.h"
#include "headless/viewport/own_camera.h"
#include "headless/viewport/shown_nodes.h"

namespace headless {
namespace {

// Of a picture, in pixels each way: room for something to show, and no more than renderers have.
constexpr int kSmallest = 16;
constexpr int kLargest = 8192;

// The nearest that shows is at most so many times nearer than the farthest, for the sake of the
// depth buffer's precision; the margin keeps what lies at either end from being cut by rounding.
constexpr double kDepthRatio = 4000;
constexpr double kDepthMargin = 1.05;

Vector Unit(const Vector& v) {
    return v * (1 / std::sqrt(Dot(v, v)));
}

double Aspect(const ViewportSettings& settings) {
    return static_cast<double>(settings.width) / settings.height;
}

bool IsPictureSize(int pixels) {
    return pixels >= kSmallest && pixels <= kLargest;
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
    std::vector<ShownBox> shown = ShownBoxes(t);
    shown.push_back({.handle = 0, .box = grid.area});
    Depths depths{std::numeric_limits<double>::max(), UnitsPerMetre()};
    for (const ShownBox& one : shown)
        for (const Vector& p : Corners(one.box)) {
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
    aimed.grid = GridBelow(settings.path.times.empty() ? PathThrough(settings, {t}, false).framed
                                                       : settings.path.framed,
                           settings.width);
    aimed.view = ViewFrom(pose, opening, DepthsFrom(pose, aimed.grid, t), settings);
    aimed.camera = node;
    return aimed;
}

AimedView FromOwnCamera(const ViewportSettings& settings, TimeValue t) {
    if (settings.path.times.empty() || settings.path.places.empty()) {
        ViewportSettings aimedAnew = settings;
        aimedAnew.path = PathThrough(settings, {t}, false);
        return FromOwnCamera(aimedAnew, t);
    }
    Pose pose = PoseFrom(settings.side);
    pose.place = PlaceOn(settings.path, t);
    AimedView aimed;
    aimed.grid = GridBelow(settings.path.framed, settings.width);
    aimed.view = ViewFrom(pose, OwnOpening(settings), DepthsFrom(pose, aimed.grid, t), settings);
    return aimed;
}

}  // namespace

bool HasPictureSize(const ViewportSettings& settings) {
    return IsPictureSize(settings.width) && IsPictureSize(settings.height);
}

AimedView AimView(const ViewportSettings& settings, TimeValue t) {
    if (!HasPictureSize(settings)) return Failed("a picture is 16 to 8,192 pixels wide and high");
    if (!settings.camera.empty()) return ThroughCamera(settings, t);
    return FromOwnCamera(settings, t);
}

}  // namespace headless
