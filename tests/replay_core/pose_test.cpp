#include "replay_core/motion/pose.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>
#include <span>
#include <string>
#include <vector>

#include "tests/replay_core/captures.h"
#include "tests/support/allocations.h"

namespace {

using replay::Channel;
using replay::Joint;
using replay::Motion;
using Point = std::array<double, 3>;

void ExpectRow(const TVL::CMatrix4& matrix, int row, const Point& expected, double tolerance) {
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(matrix[row][axis], expected[static_cast<std::size_t>(axis)], tolerance)
            << "row " << row << ", column " << axis;
    }
}

void ExpectMatrix(const TVL::CMatrix4& matrix, const std::array<Point, 4>& rows) {
    for (int row = 0; row < 4; ++row) {
        ExpectRow(matrix, row, rows[static_cast<std::size_t>(row)], 1e-12);
        EXPECT_EQ(matrix[row][3], row == 3 ? 1.0 : 0.0);
    }
}

TEST(LocalTransform, PutsPositionChannelsInPlaceOfTheOffset) {
    const Joint joint{"", 0, {1, 2, 3}, {Channel::kZposition, Channel::kXposition}, 1};
    const std::array<double, 4> frame{99, 30, 10, 99};
    ExpectRow(LocalTransform(joint, frame, 0.5), 3, {5, 1, 15}, 0);
}

// The hip stands at (1, 10, 2) and bows by 45 degrees about x; the leg hangs at (1, -2, 0.5) of it.
TEST(EvaluatePose, CarriesJointsAlongWithTheirParentsInMetres) {
    const Motion motion = ReadWhole(kStep);
    std::vector<TVL::CMatrix4> world(2);
    EvaluatePose(motion, 1, 0.1, world);
    const double root = std::numbers::sqrt2 / 2;
    ExpectMatrix(world[0], {{{1, 0, 0}, {0, root, root}, {0, -root, root}, {0.1, 1, 0.2}}});
    ExpectRow(world[1], 3, {0.2, 1 - 0.25 * root, 0.2 - 0.15 * root}, 1e-12);
    // The leg turns by -60 degrees about x, then 30 about y, then with the hip: its own x axis goes
    // to (cos 30, 0, -sin 30) of the hip.
    ExpectRow(world[1], 0, {std::sqrt(3.0) / 2, 0.5 * root, -0.5 * root}, 1e-12);
}

// The same by another road: quaternions, and each joint walked up to its root.
struct Quaternion {
    double w, x, y, z;
};

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z,
            a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

Point Rotate(const Quaternion& q, const Point& p) {
    const Quaternion turned =
        q * Quaternion{0, p[0], p[1], p[2]} * Quaternion{q.w, -q.x, -q.y, -q.z};
    return {turned.x, turned.y, turned.z};
}

Quaternion TurnOf(const Joint& joint, std::span<const double> frame) {
    Quaternion turn{1, 0, 0, 0};
    for (std::size_t i = 0; i < joint.channels.size(); ++i) {
        const double half = frame[joint.firstChannel + i] * std::numbers::pi / 360;
        const double c = std::cos(half);
        const double s = std::sin(half);
        if (joint.channels[i] == Channel::kXrotation) turn = turn * Quaternion{c, s, 0, 0};
        if (joint.channels[i] == Channel::kYrotation) turn = turn * Quaternion{c, 0, s, 0};
        if (joint.channels[i] == Channel::kZrotation) turn = turn * Quaternion{c, 0, 0, s};
    }
    return turn;
}

Point PlaceOf(const Joint& joint, std::span<const double> frame) {
    Point place = joint.offset;
    for (std::size_t i = 0; i < joint.channels.size(); ++i) {
        const auto axis = static_cast<std::size_t>(joint.channels[i]);
        if (axis < 3) place[axis] = frame[joint.firstChannel + i];
    }
    return place;
}

// Where a point of the joint is in the world, in capture units.
Point WorldPoint(const Motion& motion, std::span<const double> frame, std::size_t joint,
                 Point point) {
    for (; joint != replay::kNoJoint; joint = motion.joints[joint].parent) {
        point = Rotate(TurnOf(motion.joints[joint], frame), point);
        const Point place = PlaceOf(motion.joints[joint], frame);
        for (std::size_t axis = 0; axis < 3; ++axis)
            point[axis] += place[axis];
    }
    return point;
}

void ExpectPoseByQuaternions(const Motion& motion, std::size_t frame,
                             const std::vector<TVL::CMatrix4>& world) {
    const Point axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (std::size_t joint = 0; joint < motion.joints.size(); ++joint) {
        const Point place = WorldPoint(motion, motion.Frame(frame), joint, {0, 0, 0});
        Point metres = place;
        for (double& coordinate : metres)
            coordinate *= replay::kCmuMetresPerUnit;
        ExpectRow(world[joint], 3, metres, 1e-10);
        for (int row = 0; row < 3; ++row) {
            Point tip = WorldPoint(motion, motion.Frame(frame), joint, axes[row]);
            for (std::size_t axis = 0; axis < 3; ++axis)
                tip[axis] -= place[axis];
            ExpectRow(world[joint], row, tip, 1e-10);
        }
    }
}

struct RealCapture {
    std::size_t joints, channels, frames;
    double frameSeconds, lastValue;
};

std::string TextOf(const char* name) {
    std::ifstream file(kRealCaptures + name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name << " of the package assimp-testmodels";
    return {std::istreambuf_iterator<char>(file), {}};
}

void ExpectCapture(const Motion& motion, const RealCapture& capture) {
    EXPECT_EQ(motion.joints.size(), capture.joints);
    EXPECT_EQ(motion.channelCount, capture.channels);
    EXPECT_EQ(motion.frameCount, capture.frames);
    EXPECT_EQ(motion.frameSeconds, capture.frameSeconds);
    EXPECT_EQ(motion.values.back(), capture.lastValue);
}

void ExpectPosesByQuaternions(const Motion& motion) {
    std::vector<TVL::CMatrix4> world(motion.joints.size());
    for (std::size_t frame = 0; frame < motion.frameCount; frame += 100) {
        const std::size_t before = Allocations();
        EvaluatePose(motion, frame, replay::kCmuMetresPerUnit, world);
        EXPECT_EQ(Allocations(), before);
        ExpectPoseByQuaternions(motion, frame, world);
    }
}

// The last one holds a frame more than it announces, and turns about z, x, y.
TEST(EvaluatePose, AgreesWithQuaternionsOnRealCaptures) {
    for (const auto& [text, capture] : {
             std::pair{TextOf("01_01.bvh"), RealCapture{31, 96, 2752, .0083333, -0.9244}},
             {TextOf("01_03.bvh"), RealCapture{31, 96, 4511, .0083333, -0.8148}},
             {TextOf("Boxing_Toes.bvh"), RealCapture{21, 66, 3070, 0.01, -1.277767}},
         }) {
        SCOPED_TRACE(capture.frames);
        const Motion motion = ReadWhole(text);
        ExpectCapture(motion, capture);
        ExpectPosesByQuaternions(motion);
    }
}

}  // namespace
