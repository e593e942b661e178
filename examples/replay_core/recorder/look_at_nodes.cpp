#include <algorithm>
#include <array>
#include <cmath>

#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/look.h"
#include "replay_core/state/claim_nodes.h"
#include "replay_core/state/node_book.h"

namespace replay {
namespace {

std::string ParentName(TVL::CoreNode& node) {
    TVL::CNode* const parent = node.GetParent();
    if (!parent) return {};
    std::string name = AsCoreNode(parent)->GetName();
    node.ReleaseNode(parent);
    return name;
}

NodeReport::Matrix RowByRow(const TVL::CMatrix4& matrix) {
    NodeReport::Matrix rows;
    auto end = rows.begin();
    for (int row = 0; row < 4; ++row)
        end = std::copy_n(matrix[row], 4, end);
    return rows;
}

std::optional<NodeReport::Transform> LookAtTransform(TVL::CoreNode& node, double seconds) {
    const TransformLoan snapshot(node, seconds);
    if (!snapshot) return std::nullopt;
    return NodeReport::Transform{RowByRow(snapshot->GetWorldTransform()),
                                 RowByRow(snapshot->GetLocalTransform())};
}

bool LendsHelper(TVL::CoreNode& node) {
    return bool(
        SnapshotLoan(node, node.AcquireHelperSnapshot(), &TVL::CoreNode::ReleaseHelperSnapshot));
}

bool IsFinite(const std::array<double, 3>& place) {
    return std::ranges::all_of(place, [](double number) { return std::isfinite(number); });
}

std::optional<NodeReport::Bounds> BoundsOf(std::span<const std::array<double, 3>> places) {
    std::optional<NodeReport::Bounds> bounds;
    for (const std::array<double, 3>& place : places) {
        if (!IsFinite(place)) continue;
        if (!bounds) bounds = {place, place};
        for (std::size_t axis = 0; axis < place.size(); ++axis) {
            bounds->least[axis] = std::min(bounds->least[axis], place[axis]);
            bounds->most[axis] = std::max(bounds->most[axis], place[axis]);
        }
    }
    return bounds;
}

std::optional<NodeReport::Mesh> LookAtMesh(TVL::CoreNode& node, double seconds) {
    const MeshLoan snapshot(node, seconds);
    if (!snapshot) return std::nullopt;
    const TVL::CMesh mesh = snapshot->GetMesh();
    return NodeReport::Mesh{.vertices = mesh.vertices.size(),
                            .faces = mesh.faces.size() / 3,
                            .textureVertices = mesh.textureVertices.size(),
                            .bounds = BoundsOf(mesh.vertices)};
}

std::optional<NodeReport::Lens> LookAtLens(TVL::CoreNode& node, double seconds) {
    const LensLoan snapshot(node, seconds);
    if (!snapshot) return std::nullopt;
    return NodeReport::Lens{
        .fieldOfViewDegrees = snapshot->GetFieldOfView(),
        .fieldOfViewType = static_cast<std::size_t>(snapshot->GetFieldOfViewType()),
        .targetDistance = snapshot->GetTargetDistance()};
}

// A snapshot may have been lent before, and is given back with the curve that was set on it then.
std::optional<NodeReport::Shape> LookAtShape(TVL::CoreNode& node, double seconds) {
    const ShapeLoan snapshot(node, seconds);
    if (!snapshot) return std::nullopt;
    NodeReport::Shape shape;
    const int before = snapshot->GetCurve();
    for (int curve = 0; curve < snapshot->GetCurveCount(); ++curve) {
        snapshot->SetCurve(curve);
        shape.curveLengths.push_back(snapshot->GetCurveLength());
    }
    snapshot->SetCurve(before);
    return shape;
}

void Look(TVL::CoreNode& node, double seconds, NodeReport& look) {
    look.isThere = true;
    look.name = node.GetName();
    look.parent = ParentName(node);
    look.children = static_cast<std::size_t>(std::max(node.GetChildCount(), 0));
    look.isVisible = node.IsVisible();
    look.transform = LookAtTransform(node, seconds);
    look.lendsHelper = LendsHelper(node);
    look.mesh = LookAtMesh(node, seconds);
    look.lens = LookAtLens(node, seconds);
    look.shape = LookAtShape(node, seconds);
}

}  // namespace

std::vector<NodeReport> LookAtNodes(TVL::AdaptorInterface& adaptor,
                                    std::span<const std::uint32_t> handles, double seconds) {
    std::vector<NodeReport> looks(handles.size());
    const FoundNodes found = FoundNodes::ByHandle(adaptor, handles);
    for (std::size_t i = 0; i < handles.size(); ++i) {
        looks[i].handle = handles[i];
        if (TVL::CoreNode* const node = found[i]) Look(*node, seconds, looks[i]);
    }
    return looks;
}

}  // namespace replay
