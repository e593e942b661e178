#include "replay_core/motion/pose.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace replay {
namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

// Multiplies `matrix` on the left by a turn about axis 0, 1 or 2 (x, y, z), counter-clockwise when
// seen from the axis's far end: it leads from the axis that follows in the circle x, y, z to the
// one after that, and touches these two rows alone. A sum begins with 0, as that of a product does.
void TurnFirst(int axis, double degrees, TVL::CMatrix4& matrix) {
    const double cosine = std::cos(degrees * kRadiansPerDegree);
    const double sine = std::sin(degrees * kRadiansPerDegree);
    double* const next = matrix[(axis + 1) % 3];
    double* const after = matrix[(axis + 2) % 3];
    for (int column = 0; column < 3; ++column) {
        const double from = next[column];
        const double to = after[column];
        next[column] = 0.0 + cosine * from + sine * to;
        after[column] = 0.0 + cosine * to - sine * from;
    }
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
                TurnFirst(0, value, transform);
                break;
            case Channel::kYrotation:
                TurnFirst(1, value, transform);
                break;
            case Channel::kZrotation:
                TurnFirst(2, value, transform);
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
