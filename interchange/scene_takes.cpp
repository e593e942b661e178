#include "interchange/scene_takes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/matrix3.h"
#include "host/node.h"
#include "host/time.h"
#include "host/units.h"
#include "interchange/host_node.h"

namespace interchange {
namespace {

using headless::NodeView;

constexpr double kShortestFrame = 1e-4;  // seconds; who tells of shorter ones knows of none

// Captures have at least ten frames a second. What lies further apart was put there by hand, and
// what the scene shows between counts as well.
constexpr double kLongestCaptured = 0.1;  // seconds

using Handle = std::uint32_t;

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

// The nodes of a take, a parent before its children, each under a name of its own.
class NodeReader {
  public:
    NodeReader(const std::vector<NodeView>& scene, const std::map<Handle, std::string>& names)
        : names_(names) {
        for (const NodeView& node : scene)
            parents_[node.handle] = node.parent;
    }

    void Add(const NodeView& view, Take& take) {
        std::vector<TakeNode>& nodes = take.nodes;
        const TimeValue first = TickOf(take.startSeconds);
        TakeNode& node = nodes.emplace_back();
        node.name = unique_.Of(names_.at(view.handle));
        node.handle = view.handle;
        node.parent = ParentOf(view);
        places_[view.handle] = nodes.size() - 1;
        node.kind = view.keys.count > 0 ? NodeKind::kJoint : NodeKind::kOther;
        INode* const host = GetCOREInterface()->GetINodeByHandle(view.handle);
        if (!host) return;
        node.lens = LensOf(*host, first, TickOf(take.EndSeconds()));
        if (node.lens)
            node.kind = NodeKind::kCamera;
        else if (!view.hidden)
            node.shape = ShapeOf(*host, first);
    }

  private:
    std::size_t ParentOf(const NodeView& view) const {
        for (Handle above = view.parent; above != 0; above = parents_.at(above))
            if (const auto place = places_.find(above); place != places_.end())
                return place->second;
        return kNoNode;
    }

    const std::map<Handle, std::string>& names_;
    std::map<Handle, Handle> parents_;
    std::map<Handle, std::size_t> places_;  // in the take
    UniqueNames unique_;
};

// `names` are those of the nodes that are of the take.
void ReadNodes(const std::vector<NodeView>& scene, const std::map<Handle, std::string>& names,
               Take& take) {
    NodeReader reader(scene, names);
    for (const NodeView& view : scene)
        if (names.contains(view.handle)) reader.Add(view, take);
}

// Of the nodes that are not taken yet, the one that is called so. If there are several, as where
// two takes of one capture are in a scene, one below a node of the take.
class Finder {
  public:
    explicit Finder(const std::vector<NodeView>& scene) {
        for (const NodeView& view : scene)
            free_[view.name].push_back(&view);
    }

    std::map<Handle, std::string> Take(const std::vector<replay::TakeNodeReport>& nodes) {
        std::map<Handle, std::string> names;
        for (const replay::TakeNodeReport& node : nodes) {
            std::vector<const NodeView*>& called = free_[node.hostName];
            if (called.empty()) continue;
            const auto isBelow = [&](const NodeView* view) { return names.contains(view->parent); };
            auto found = std::ranges::find_if(called, isBelow);
            if (found == called.end()) found = called.begin();
            names[(*found)->handle] = node.name;
            called.erase(found);
        }
        return names;
    }

  private:
    std::map<std::string, std::vector<const NodeView*>> free_;
};

double SceneFrameSeconds() {
    return GetTicksPerFrame() / TicksPerSecond();
}

// From the first frame to the one at `end`, or behind it if none is there.
void SetSpan(double start, double end, double frameSeconds, Take& take) {
    constexpr double kRounding = 1e-3;  // of a frame
    take.startSeconds = start;
    take.frameSeconds = frameSeconds;
    take.frameCount =
        static_cast<std::size_t>(std::ceil((end - start) / frameSeconds - kRounding)) + 1;
}

// The span of all recordings, in the frames of the newest. What a file tells of them can be
// anything.
void ReadSpan(const std::vector<replay::Recording>& recordings, Take& take) {
    double start = LastSeconds();
    double end = -LastSeconds();
    for (const replay::Recording& recording : recordings) {
        const auto within = [](double seconds) {
            return std::clamp(seconds, -LastSeconds(), LastSeconds());
        };
        start = std::min(start, within(recording.FirstSeconds()));
        end = std::max(end, within(recording.LastSeconds()));
    }
    const double frame = recordings.back().frameSeconds;
    SetSpan(start, std::max(start, end), frame > kShortestFrame ? frame : SceneFrameSeconds(),
            take);
    constexpr double kMostFrames = 1e9;
    const double ahead = (start - recordings.back().startSeconds) / take.frameSeconds;
    if (std::abs(ahead) < kMostFrames) take.firstNumber = std::llround(ahead);
}

bool AreFrames(const std::vector<TimeValue>& keys, double ticks) {
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (std::abs(keys.front() + static_cast<double>(i) * ticks - keys[i]) > 1) return false;
    return ticks >= 1 && ticks <= kLongestCaptured * TicksPerSecond();
}

// The span of all keys, in frames as long as the keys of the node that has most lie apart, or the
// scene's where they are not the frames of a capture.
void ReadSpan(const std::map<Handle, std::string>& names, Take& take) {
    std::vector<TimeValue> most;
    TimeValue first = std::numeric_limits<TimeValue>::max();
    TimeValue last = std::numeric_limits<TimeValue>::min();
    for (const auto& [handle, name] : names) {
        std::vector<TimeValue> keys = KeyTimesOf(handle);
        if (keys.empty()) continue;
        first = std::min(first, keys.front());
        last = std::max(last, keys.back());
        if (keys.size() > most.size()) most = std::move(keys);
    }
    const double ticks =
        most.size() < 2 ? 0 : (double{1} * most.back() - most.front()) / double(most.size() - 1);
    SetSpan(first / TicksPerSecond(), last / TicksPerSecond(),
            AreFrames(most, ticks) ? ticks / TicksPerSecond() : SceneFrameSeconds(), take);
}

std::vector<Take> TreesWithKeys(const std::vector<NodeView>& scene) {
    struct Tree {
        std::string name;
        bool moves = false;
        std::map<Handle, std::string> names{};
    };
    std::vector<Tree> trees;
    std::map<Handle, std::size_t> treeOf;
    UniqueNames unique;
    for (const NodeView& view : scene) {
        if (view.parent == 0) trees.push_back({view.name});
        const std::size_t tree = view.parent == 0 ? trees.size() - 1 : treeOf.at(view.parent);
        treeOf[view.handle] = tree;
        trees[tree].names[view.handle] = view.name;
        if (view.keys.count > 1) trees[tree].moves = true;
    }
    std::vector<Take> takes;
    for (const Tree& tree : trees) {
        if (!tree.moves) continue;
        Take& take = takes.emplace_back();
        take.name = unique.Of(tree.name);
        ReadSpan(tree.names, take);
        ReadNodes(scene, tree.names, take);
    }
    return takes;
}

}  // namespace

std::vector<Take> TakesOf(const std::vector<replay::TakeReport>& told) {
    const std::vector<NodeView> scene = headless::Nodes();
    std::vector<Take> takes;
    Finder finder(scene);
    for (const replay::TakeReport& report : told) {
        const std::map<Handle, std::string> names = finder.Take(report.nodes);
        if (names.empty() || report.recordings.empty()) continue;
        Take& take = takes.emplace_back();
        take.name = report.name;
        ReadSpan(report.recordings, take);
        ReadNodes(scene, names, take);
    }
    return takes.empty() ? TreesWithKeys(scene) : takes;
}

ScenePoses::ScenePoses(const Take& take)
    : take_(take), last_(take.nodes.size(), TVL::CMatrix4::Identity()) {
    for (const TakeNode& node : take.nodes) {
        std::vector<TimeValue> keys = KeyTimesOf(node.handle);
        if (keys.size() > keys_.size()) keys_ = std::move(keys);
    }
}

TimeValue ScenePoses::MomentOf(double seconds) const {
    constexpr double kRounding = 1e-6;
    const double frame = (seconds - take_.startSeconds) / take_.frameSeconds;
    const TimeValue t = TickOf(seconds);
    if (std::abs(frame - std::round(frame)) > kRounding) return t;
    const auto from = std::ranges::lower_bound(keys_, t - 1);
    TimeValue nearest = t;
    double distance = 1 + kRounding;
    for (auto key = from; key != keys_.end() && key - from < 3; ++key) {
        const double away = std::abs(*key - seconds * TicksPerSecond());
        if (*key == t) return t;
        if (away > distance) continue;
        nearest = *key;
        distance = away;
    }
    return nearest;
}

void ScenePoses::At(double seconds, std::span<TVL::CMatrix4> world) {
    const double metresPerUnit = GetMasterScale(UNITS_METERS);
    const TimeValue t = MomentOf(seconds);
    for (std::size_t i = 0; i < last_.size(); ++i) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(take_.nodes[i].handle);
        if (node) last_[i] = WorldOf(node->GetNodeTM(t), metresPerUnit);
        world[i] = last_[i];
    }
}

}  // namespace interchange
