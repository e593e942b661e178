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
    std::vector<TimeValue> times;
    INode* const node = GetCOREInterface()->GetINodeByHandle(handle);
    if (!node || !node->GetTMController()) return times;
    std::vector<Animatable*> parts{node->GetTMController()};
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

std::optional<Lens> LensOf(INode& node, TimeValue t) {
    auto* const camera = dynamic_cast<CameraObject*>(node.EvalWorldState(t, true).obj);
    if (!camera) return std::nullopt;
    Interval valid;
    return Lens{.fieldOfView = double{camera->GetFOV(t, valid)},
                .fieldOfViewType = camera->GetFOVType()};
}

}  // namespace interchange
