#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "replay_core/motion/body_part.h"
#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/scenery.h"
#include "tvl/snapshot.h"

namespace replay {
namespace {

// What is less comes from the host's single precision.
constexpr double kLeastLiftMetres = 1e-5;

TVL::CMatrix4 WorldTransformOf(TVL::CoreNode& node, double seconds) {
    const TransformLoan snapshot(node, seconds);
    return snapshot ? snapshot->GetWorldTransform() : TVL::CMatrix4::Zero();
}

// The surface of the ground at a moment. Rays are cast in the mesh's own space.
class GroundAt {
  public:
    GroundAt(TVL::CoreNode& node, double seconds)
        : mesh_(node, seconds),
          toWorld_(WorldTransformOf(node, seconds)),
          toObject_(TVL::Inverse(toWorld_)) {}

    // How high the first surface straight below a place is, in metres; empty if there is none.
    std::optional<double> HeightBelow(const Vector3& place) const {
        const Vector3 down = DirectionThrough({0, -1, 0}, toObject_);
        const double size = Length(down);
        if (!mesh_ || !(size > 0)) return std::nullopt;
        const Vector3 origin = PointThrough(place, toObject_);
        const Vector3 direction = Scaled(down, 1 / size);
        double distance = 0;
        if (!mesh_->IntersectRay(origin, direction, &distance, nullptr)) return std::nullopt;
        return PointThrough(Sum(origin, Scaled(direction, distance)), toWorld_)[1];
    }

  private:
    MeshLoan mesh_;
    TVL::CMatrix4 toWorld_;
    TVL::CMatrix4 toObject_;
};

// A place of a foot, along the axes of its joint, in metres.
struct Sole {
    std::size_t joint;
    Vector3 offset;
};

std::vector<Sole> SolesOf(const Motion& motion, double metresPerUnit) {
    std::vector<Sole> soles;
    for (std::size_t joint = 0; joint < motion.joints.size(); ++joint)
        if (IsFoot(motion.joints[joint].name)) soles.push_back({joint, {}});
    for (const EndSite& end : motion.endSites)
        if (IsFoot(motion.joints[end.joint].name))
            soles.push_back({end.joint, Scaled(end.offset, metresPerUnit)});
    return soles;
}

double HighestJoint(std::span<const TVL::CMatrix4> pose) {
    double highest = pose.front()[3][1];
    for (const TVL::CMatrix4& joint : pose)
        highest = std::max(highest, joint[3][1]);
    return highest;
}

double LiftFor(std::span<const TVL::CMatrix4> pose, std::span<const Sole> soles,
               const GroundAt& ground) {
    double lift = 0;
    const double from = HighestJoint(pose);
    for (const Sole& sole : soles) {
        const Vector3 place = PointThrough(sole.offset, pose[sole.joint]);
        const std::optional<double> height = ground.HeightBelow({place[0], from, place[2]});
        if (height) lift = std::max(lift, *height - place[1]);
    }
    return lift > kLeastLiftMetres ? lift : 0;
}

}  // namespace

Lifts LiftsOnto(TVL::CoreNode& ground, const Motion& motion, const Recording& recording,
                platform::ProgressLine& progress) {
    const std::vector<Sole> soles = SolesOf(motion, recording.metresPerUnit);
    MeantPoses poses(motion, recording.metresPerUnit, {});
    Lifts lifts{.firstFrame = recording.firstFrame, .metres = {}};
    for (std::size_t frame = recording.firstFrame; frame < recording.endFrame; ++frame) {
        const GroundAt now(ground, recording.Seconds(frame));
        lifts.metres.push_back(LiftFor(poses.At(frame), soles, now));
        if (!progress.Advance()) break;
    }
    return lifts;
}

}  // namespace replay
