#include "replay_core/recorder/helper_look.h"

#include <algorithm>
#include <cstddef>

#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/loans.h"

namespace replay {

void DressNode(TVL::CoreNode& node, const TVL::CMesh& mesh, const Colour& colour) {
    const SnapshotLoan look(node, node.AcquireHelperSnapshot(),
                            &TVL::CoreNode::ReleaseHelperSnapshot);
    if (!look) return;
    look->SetMesh(mesh);
    look->SetColor(colour.red, colour.green, colour.blue);
}

void AddSpike(TVL::CMesh& mesh, const Spike& spike) {
    const int start = static_cast<int>(mesh.vertices.size());
    const int tip = start + 5;
    const Vector3& waist = spike.waist;
    mesh.vertices.insert(
        mesh.vertices.end(),
        {spike.start, Sum(waist, spike.side), Sum(waist, spike.front),
         Difference(waist, spike.side), Difference(waist, spike.front), spike.tip});
    for (int corner = 0; corner < 4; ++corner) {
        const int here = start + 1 + corner;
        const int next = start + 1 + (corner + 1) % 4;
        mesh.faces.insert(mesh.faces.end(), {here, next, tip, next, here, start});
    }
}

namespace {

// Of a bone's length: how thick it is, measured from its axis, and how far from the joint that is.
// The short bones of spine, neck and head are stout, so that trunk and head stand out.
constexpr double kBoneThickness = 0.12;
constexpr double kMiddleBoneThickness = 0.4;
constexpr double kBoneWaist = 0.2;

constexpr double kMostThicknessMetres = 0.06;
constexpr double kMarkMetres = 0.015;

// From the joint, at the origin, to `end`.
void AddBone(TVL::CMesh& mesh, const Vector3& end, BodySide side, double mostThickness) {
    const double length = Length(end);
    if (!(length > 0)) return;
    const Vector3 along = Scaled(end, 1 / length);
    const Vector3 across = AcrossFrom(along);
    const double share = side == BodySide::kMiddle ? kMiddleBoneThickness : kBoneThickness;
    const double thickness = std::min(share * length, mostThickness);
    AddSpike(mesh, {.start = {},
                    .waist = Scaled(end, kBoneWaist),
                    .side = Scaled(across, thickness),
                    .front = Scaled(Cross(along, across), thickness),
                    .tip = end});
}

void AddMark(TVL::CMesh& mesh, double size) {
    AddSpike(mesh, {.start = {0, 0, -size},
                    .waist = {},
                    .side = {size, 0, 0},
                    .front = {0, size, 0},
                    .tip = {0, 0, size}});
}

}  // namespace

std::vector<TVL::CMesh> BoneMeshes(const Motion& motion, double hostUnitsPerCaptureUnit,
                                   double hostUnitsPerMetre) {
    std::vector<TVL::CMesh> bones(motion.joints.size());
    const auto add = [&](std::size_t joint, const Vector3& offset) {
        AddBone(bones[joint], Scaled(offset, hostUnitsPerCaptureUnit),
                SideOf(motion.joints[joint].name), kMostThicknessMetres * hostUnitsPerMetre);
    };
    for (const Joint& joint : motion.joints)
        if (joint.parent != kNoJoint) add(joint.parent, joint.offset);
    for (const EndSite& end : motion.endSites)
        add(end.joint, end.offset);
    for (TVL::CMesh& mesh : bones)
        if (mesh.faces.empty()) AddMark(mesh, kMarkMetres * hostUnitsPerMetre);
    return bones;
}

// Told apart by those who see few colours, too.
Colour ColourOf(BodySide side) {
    switch (side) {
        case BodySide::kLeft:
            return {0.22F, 0.53F, 0.95F};
        case BodySide::kRight:
            return {0.95F, 0.58F, 0.18F};
        default:
            return {0.88F, 0.88F, 0.84F};
    }
}

}  // namespace replay
