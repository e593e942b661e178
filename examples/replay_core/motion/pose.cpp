#include "replay_core/motion/pose.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace replay {
namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

// A turn about axis 0, 1 or 2 (x, y, z), counter-clockwise when seen from the axis's far end: it
// leads from the axis that follows in the circle x, y, z to the one after that.
TVL::CMatrix4 Turn(int axis, double degrees) {
    const double cosine = std::cos(degrees * kRadiansPerDegree);
    const double sine = std::sin(degrees * kRadiansPerDegree);
    const int next = (axis + 1) % 3;
    const int after = (axis + 2) % 3;
    TVL::CMatrix4 matrix = TVL::CMatrix4::Identity();
    matrix[next][next] = cosine;
    matrix[next][after] = sine;
    matrix[after][next] = -sine;
    matrix[after][after] = cosine;
    return matrix;
}

}  // namespace

TVL::CMatrix4 LocalTransform(const Joint& joint, std::span<const double> frame,
                             double metresPerUnit) {
    TVL::CMatrix4 transform = TVL::CMatrix4::Identity();
    std::array<double, 3> place = joint.offset;
    for (std::size_t i = 0; i < joint.channels.size(); ++i) {
        const double value = frame[joint.firstChannel + i];
        switch (joint.channels[i]) {
            case Channel::kXposition:
                place[0] = value;
                break;
            case Channel::kYposition:
                place[1] = value;
                break;
            case Channel::kZposition:
                place[2] = value;
                break;
            case Channel::kXrotation:
                transform = Turn(0, value) * transform;
                break;
            case Channel::kYrotation:
                transform = Turn(1, value) * transform;
                break;
            case Channel::kZrotation:
                transform = Turn(2, value) * transform;
                break;
        }
    }
    for (std::size_t axis = 0; axis < 3; ++axis)
        transform[3][axis] = place[axis] * metresPerUnit;
    return transform;
}

void EvaluatePose(const Motion& motion, std::size_t frame, double metresPerUnit,
                  std::span<TVL::CMatrix4> world) {
    const std::span<const double> values = motion.Frame(frame);
    for (std::size_t i = 0; i < motion.joints.size(); ++i) {
        const Joint& joint = motion.joints[i];
        world[i] = LocalTransform(joint, values, metresPerUnit);
        if (joint.parent != kNoJoint) world[i] = world[i] * world[joint.parent];
    }
}

double HeightOf(const Motion& motion, double metresPerUnit, std::span<const TVL::CMatrix4> world) {
    double lowest = world[0][3][1];
    double highest = lowest;
    const auto take = [&](double height) {
        lowest = std::min(lowest, height);
        highest = std::max(highest, height);
    };
    for (const TVL::CMatrix4& joint : world)
        take(joint[3][1]);
    for (const EndSite& end : motion.endSites) {
        double height = world[end.joint][3][1];
        for (int axis = 0; axis < 3; ++axis)
            height += end.offset[static_cast<std::size_t>(axis)] * metresPerUnit *
                      world[end.joint][axis][1];
        take(height);
    }
    return highest - lowest;
}

}  // namespace replay
