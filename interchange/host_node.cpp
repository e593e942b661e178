#include "interchange/host_node.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "headless/viewport.h"
#include "host/interface.h"
#include "host/matrix3.h"
#include "host/node.h"
#include "host/time.h"
#include "host/units.h"
#include "replay/recording.h"

namespace interchange {
namespace {

constexpr double kLastTick = std::numeric_limits<TimeValue>::max();

// Normals stay at right angles to their faces, however the node is scaled.
Point3 OwnNormal(const Matrix3& world, const Point3& normal) {
    const auto along = [&](int row) {
        const Point3 axis = world.GetRow(row);
        return axis.x * normal.x + axis.y * normal.y + axis.z * normal.z;
    };
    return Point3(along(0), along(1), along(2)).Normalize();
}

std::vector<TimeValue> KeyTimesOf(Animatable* whole) {
    std::vector<Animatable*> parts;
    if (whole) parts.push_back(whole);
    std::vector<TimeValue> times;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        for (int sub = 0; sub < parts[i]->NumSubs(); ++sub)
            if (Animatable* const part = parts[i]->SubAnim(sub)) parts.push_back(part);
        for (int key = 0; key < parts[i]->NumKeys(); ++key)
            times.push_back(parts[i]->GetKeyTime(key));
    }
    std::ranges::sort(times);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

}  // namespace

double TicksPerSecond() {
    return static_cast<double>(GetTicksPerFrame()) * GetFrameRate();
}

double LastSeconds() {
    return kLastTick / TicksPerSecond();
}

TimeValue TickOf(double seconds) {
    const double ticks = GetTicksPerFrame() * (GetFrameRate() * replay::HostSeconds(seconds));
    return std::isnan(ticks) ? 0 : static_cast<TimeValue>(std::clamp(ticks, -kLastTick, kLastTick));
}

std::vector<TimeValue> KeyTimesOf(std::uint32_t handle) {
    INode* const node = GetCOREInterface()->GetINodeByHandle(handle);
    return node ? KeyTimesOf(node->GetTMController()) : std::vector<TimeValue>();
}

std::vector<ShapeVertex> ShapeOf(INode& node, TimeValue t) {
    const Matrix3 world = node.GetNodeTM(t);
    const Matrix3 own = Inverse(world);
    const float metresPerUnit = static_cast<float>(GetMasterScale(UNITS_METERS));
    std::vector<ShapeVertex> shape;
    const headless::DrawList drawn = headless::DrawNode(node.GetHandle(), t);
    for (const headless::DrawBatch& batch : drawn.batches) {
        if (!batch.isTriangles) continue;
        for (const headless::DrawVertex& vertex : batch.vertices) {
            const Point3 place = own.PointTransform(vertex.place) * metresPerUnit;
            const Point3 normal = OwnNormal(world, vertex.normal);
            const auto& [red, green, blue] = vertex.colour;
            shape.push_back(
                {{place.x, place.y, place.z}, {normal.x, normal.y, normal.z}, {red, green, blue}});
        }
    }
    return shape;
}

std::optional<Lens> LensOf(INode& node, TimeValue first, TimeValue last) {
    constexpr double kStill = 1e-6;  // radians, which single precision takes from most lenses
    auto* const camera = dynamic_cast<CameraObject*>(node.EvalWorldState(first, true).obj);
    if (!camera) return std::nullopt;
    const auto viewAt = [camera](TimeValue t) {
        Interval valid;
        return double{camera->GetFOV(t, valid)};
    };
    Lens lens{.fieldOfView = viewAt(first), .fieldOfViewType = camera->GetFOVType()};
    const auto isOther = [&](TimeValue t) {
        return t >= first && t <= last && std::abs(viewAt(t) - lens.fieldOfView) > kStill;
    };
    lens.moves = isOther(last) || std::ranges::any_of(KeyTimesOf(camera), isOther);
    return lens;
}

}  // namespace interchange
