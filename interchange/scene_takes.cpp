#include "interchange/scene_takes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "headless/scene_view.h"
#include "headless/viewport.h"
#include "host/interface.h"
#include "host/matrix3.h"
#include "host/node.h"
#include "host/time.h"
#include "host/units.h"

namespace interchange {
namespace {

using headless::NodeView;

// A rate of frames that nobody can mean is none.
constexpr double kShortestFrame = 1e-4;  // seconds

double TicksPerSecond() {
    return static_cast<double>(GetTicksPerFrame()) * GetFrameRate();
}

// The tick at which a Core finds the node at that time.
TimeValue TickOf(double seconds) {
    constexpr double kMost = std::numeric_limits<TimeValue>::max();
    const double ticks = GetTicksPerFrame() * (GetFrameRate() * replay::HostSeconds(seconds));
    return static_cast<TimeValue>(std::clamp(ticks, -kMost, kMost));
}

// Host axes are Z up.
std::array<double, 3> InCoreAxes(const Point3& p) {
    return {double{p.x}, double{p.z}, -double{p.y}};
}

TVL::CMatrix4 WorldOf(const Matrix3& host, double metresPerUnit) {
    TVL::CMatrix4 world = TVL::CMatrix4::Identity();
    for (int row = 0; row < 4; ++row) {
        const std::array<double, 3> core = InCoreAxes(host.GetRow(row));
        for (int i = 0; i < 3; ++i)
            world[row][i] = core[static_cast<std::size_t>(i)] * (row == 3 ? metresPerUnit : 1);
    }
    return world;
}

// In the node's own space, from where it is in the world.
class ShapeReader {
  public:
    ShapeReader(const Matrix3& world, double metresPerUnit)
        : inverse_(Inverse(world)), metresPerUnit_(metresPerUnit) {}

    std::vector<ShapeVertex> Read(const headless::DrawList& drawn) const {
        std::vector<ShapeVertex> shape;
        for (const headless::DrawBatch& batch : drawn.batches)
            if (batch.isTriangles)
                for (const headless::DrawVertex& vertex : batch.vertices)
                    shape.push_back(Read(vertex));
        return shape;
    }

  private:
    ShapeVertex Read(const headless::DrawVertex& vertex) const {
        const Point3 place =
            inverse_.PointTransform(vertex.place) * static_cast<float>(metresPerUnit_);
        const Point3 normal = inverse_.VectorTransform(vertex.normal).Normalize();
        return {{place.x, place.y, place.z},
                {normal.x, normal.y, normal.z},
                {vertex.colour.red, vertex.colour.green, vertex.colour.blue}};
    }

    Matrix3 inverse_;
    double metresPerUnit_;
};

Lens LensOf(CameraObject& camera, TimeValue t) {
    Interval valid;
    return {.fieldOfView = double{camera.GetFOV(t, valid)}, .fieldOfViewType = camera.GetFOVType()};
}

using Handle = std::uint32_t;

// The nodes of a take, a parent before its children, each under a name of its own.
class NodeReader {
  public:
    NodeReader(const std::vector<NodeView>& scene, const std::map<Handle, std::string>& names)
        : names_(names) {
        for (const NodeView& node : scene)
            parents_[node.handle] = node.parent;
    }

    void Add(const NodeView& view, TimeValue t, std::vector<TakeNode>& nodes) {
        TakeNode& node = nodes.emplace_back();
        node.name = Unique(names_.at(view.handle));
        node.handle = view.handle;
        node.parent = ParentOf(view);
        places_[view.handle] = nodes.size() - 1;
        node.kind = view.keys.count > 0 ? NodeKind::kJoint : NodeKind::kOther;
        INode* const host = GetCOREInterface()->GetINodeByHandle(view.handle);
        if (!host) return;
        if (auto* const camera = dynamic_cast<CameraObject*>(host->EvalWorldState(t, true).obj)) {
            node.kind = NodeKind::kCamera;
            node.lens = LensOf(*camera, t);
        } else if (!view.hidden) {
            const ShapeReader shape(host->GetNodeTM(t), GetMasterScale(UNITS_METERS));
            node.shape = shape.Read(headless::DrawNode(view.handle, t));
        }
    }

  private:
    std::size_t ParentOf(const NodeView& view) const {
        for (Handle above = view.parent; above != 0; above = parents_.at(above))
            if (const auto place = places_.find(above); place != places_.end())
                return place->second;
        return kNoNode;
    }

    std::string Unique(const std::string& name) {
        std::string unique = name;
        for (int number = 2; !taken_.insert(unique).second; ++number)
            unique = name + '_' + std::to_string(number);
        return unique;
    }

    const std::map<Handle, std::string>& names_;
    std::map<Handle, Handle> parents_;
    std::map<Handle, std::size_t> places_;  // in the take
    std::set<std::string> taken_;
};

// `names` are those of the nodes that are of the take.
void ReadNodes(const std::vector<NodeView>& scene, const std::map<Handle, std::string>& names,
               Take& take) {
    NodeReader reader(scene, names);
    for (const NodeView& view : scene)
        if (names.contains(view.handle)) reader.Add(view, TickOf(take.startSeconds), take.nodes);
}

// Two nodes can be called alike: each is of one take.
std::map<Handle, std::string> NamesOf(const replay::TakeReport& told,
                                      const std::vector<NodeView>& scene,
                                      std::set<Handle>& isTaken) {
    std::map<Handle, std::string> names;
    for (const replay::TakeNodeReport& node : told.nodes) {
        const auto found = std::ranges::find_if(scene, [&](const NodeView& view) {
            return view.name == node.hostName && !isTaken.contains(view.handle);
        });
        if (found == scene.end()) continue;
        isTaken.insert(found->handle);
        names[found->handle] = node.name;
    }
    return names;
}

// The span of all recordings, in the frames of the newest.
void ReadSpan(const std::vector<replay::Recording>& recordings, Take& take) {
    const auto first = &replay::Recording::FirstSeconds;
    const auto end = &replay::Recording::LastSeconds;
    const double last = std::ranges::max_element(recordings, {}, end)->LastSeconds();
    take.startSeconds = std::ranges::min_element(recordings, {}, first)->FirstSeconds();
    take.frameSeconds = std::max(recordings.back().frameSeconds, kShortestFrame);
    take.frameCount =
        static_cast<std::size_t>(std::llround((last - take.startSeconds) / take.frameSeconds)) + 1;
}

// The span of the keys, in frames as long as keys lie apart where that is even, or the scene's.
void ReadSpan(const std::vector<const NodeView*>& tree, Take& take) {
    const auto most =
        std::ranges::max_element(tree, {}, [](const NodeView* node) { return node->keys.count; });
    TimeValue first = std::numeric_limits<TimeValue>::max();
    TimeValue last = std::numeric_limits<TimeValue>::min();
    for (const NodeView* node : tree) {
        if (node->keys.count == 0) continue;
        first = std::min(first, node->keys.first);
        last = std::max(last, node->keys.last);
    }
    const int steps = (*most)->keys.count - 1;
    const double ticks = double{1} * last - first;
    const bool isEven = steps > 0 && ticks / steps >= 1;
    take.startSeconds = first / TicksPerSecond();
    take.frameSeconds = (isEven ? ticks / steps : GetTicksPerFrame()) / TicksPerSecond();
    take.frameCount =
        static_cast<std::size_t>(std::llround(ticks / TicksPerSecond() / take.frameSeconds)) + 1;
}

std::vector<Take> TreesWithKeys(const std::vector<NodeView>& scene) {
    std::vector<std::vector<const NodeView*>> trees;
    for (const NodeView& view : scene) {
        if (view.parent == 0) trees.emplace_back();
        trees.back().push_back(&view);
    }
    std::vector<Take> takes;
    for (const std::vector<const NodeView*>& tree : trees) {
        if (std::ranges::none_of(tree, [](const NodeView* v) { return v->keys.count > 0; }))
            continue;
        Take& take = takes.emplace_back();
        take.name = tree.front()->name;
        ReadSpan(tree, take);
        std::map<Handle, std::string> names;
        for (const NodeView* view : tree)
            names[view->handle] = view->name;
        ReadNodes(scene, names, take);
    }
    return takes;
}

}  // namespace

std::vector<Take> TakesOf(const std::vector<replay::TakeReport>& told) {
    const std::vector<NodeView> scene = headless::Nodes();
    std::vector<Take> takes;
    std::set<Handle> isTaken;
    for (const replay::TakeReport& report : told) {
        const std::map<Handle, std::string> names = NamesOf(report, scene, isTaken);
        if (names.empty() || report.recordings.empty()) continue;
        Take& take = takes.emplace_back();
        take.name = report.name;
        ReadSpan(report.recordings, take);
        ReadNodes(scene, names, take);
    }
    return takes.empty() ? TreesWithKeys(scene) : takes;
}

ScenePoses::ScenePoses(const Take& take)
    : take_(take), last_(take.nodes.size(), TVL::CMatrix4::Identity()) {}

void ScenePoses::At(double seconds, std::span<TVL::CMatrix4> world) {
    const double metresPerUnit = GetMasterScale(UNITS_METERS);
    const TimeValue t = TickOf(seconds);
    for (std::size_t i = 0; i < last_.size(); ++i) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(take_.nodes[i].handle);
        if (node) last_[i] = WorldOf(node->GetNodeTM(t), metresPerUnit);
        world[i] = last_[i];
    }
}

}  // namespace interchange
