#include "interchange/local_motion.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "interchange/turns.h"
#include "tvl/transform_parts.h"

namespace interchange {
namespace {

using TVL::CMatrix4;

// What single precision leaves of a value that stands still: of a rotation or a scale, and, in
// metres, of a place at a metre from the origin.
constexpr double kStill = 1e-6;

template <std::size_t count>
std::array<float, 4> AllNarrowed(const std::array<double, count>& numbers) {
    std::array<float, 4> narrowed{};
    std::ranges::transform(numbers, narrowed.begin(), [](double n) { return Narrowed(n); });
    return narrowed;
}

bool AreAlike(const std::array<float, 4>& a, const std::array<float, 4>& b, double still) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::abs(double{a[i]} - double{b[i]}) > still) return false;
    return true;
}

double Dot(const std::array<float, 4>& a, const std::array<float, 4>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += double{a[i]} * double{b[i]};
    return sum;
}

// First the scale, then the rotation, then the translation.
CMatrix4 PutTogether(const std::array<float, 4>& translation, const std::array<float, 4>& rotation,
                     const std::array<float, 4>& scale) {
    CMatrix4 whole = RotationOf(
        {double{rotation[0]}, double{rotation[1]}, double{rotation[2]}, double{rotation[3]}});
    for (std::size_t row = 0; row < 3; ++row) {
        for (double& part : whole.rows[row])
            part *= double{scale[row]};
        whole.rows[3][row] = double{translation[row]};
    }
    return whole;
}

double DistanceFromOrigin(const CMatrix4& world) {
    return std::hypot(world[3][0], world[3][1], world[3][2]);
}

}  // namespace

float Narrowed(double number) {
    constexpr double kMost = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(number, -kMost, kMost));
}

LocalMotion::LocalMotion(const Take& take, std::size_t mostBytes)
    : nodes(take.nodes.size()),
      take_(take),
      bytesLeft_(mostBytes),
      last_(take.nodes.size()),
      world_(take.nodes.size(), CMatrix4::Identity()),
      fromWorld_(take.nodes.size(), CMatrix4::Identity()),
      flaws_(take) {}

bool LocalMotion::Add(std::span<const CMatrix4> world) {
    for (std::size_t node = 0; node < nodes.size() && !isTooLong_; ++node)
        AddNode(node, world[node]);
    ++frame_;
    return !isTooLong_;
}

void LocalMotion::AddNode(std::size_t node, const CMatrix4& world) {
    const std::size_t parent = take_.nodes[node].parent;
    const CMatrix4 local = parent == kNoNode ? world : world * fromWorld_[parent];
    flaws_.Look(node, local, take_.Seconds(frame_));
    const Pose pose = PoseOf(local, last_[node]);
    const double stillMetres = kStill * (1 + DistanceFromOrigin(world));
    NodeMotion& motion = nodes[node];
    last_[node] = {Keep(motion.translation, pose.translation, stillMetres),
                   Keep(motion.rotation, pose.rotation, kStill),
                   Keep(motion.scale, pose.scale, kStill)};
    world_[node] = PutTogether(last_[node].translation, last_[node].rotation, last_[node].scale);
    if (parent != kNoNode) world_[node] = world_[node] * world_[parent];
    fromWorld_[node] = TVL::Inverse(world_[node]);
    if (take_.nodes[node].kind == NodeKind::kJoint)
        loss_.Compare(take_.nodes[node], world, world_[node], take_.Seconds(frame_));
}

// What is nowhere stays where it was. Of the two quaternions of a rotation it is the one on the
// short way from the last.
LocalMotion::Pose LocalMotion::PoseOf(const CMatrix4& local, const Pose& last) const {
    if (!IsFinite(local)) return last;
    const TVL::TransformParts parts = TVL::PartsOf(local);
    Pose pose{AllNarrowed(parts.translation), AllNarrowed(parts.rotation),
              AllNarrowed(parts.scale)};
    if (Dot(pose.rotation, last.rotation) < 0)
        for (float& part : pose.rotation)
            part = -part;
    return pose;
}

// Gives the value that the file has at this frame. Until it differs, it is the first one.
LocalMotion::Value LocalMotion::Keep(Channel& channel, const Value& value, double still) {
    const bool isAlike = AreAlike(value, channel.first, still);
    if (frame_ == 0 && !isAlike) channel.first = value;
    if (frame_ > 0 && channel.keys.empty() && !isAlike) Begin(channel);
    if (channel.keys.empty()) return channel.first;
    channel.keys.insert(channel.keys.end(), value.begin(),
                        value.begin() + static_cast<std::ptrdiff_t>(channel.width));
    return value;
}

// Memory for all frames is asked for at once, and not copied as it grows.
void LocalMotion::Begin(Channel& channel) {
    const std::size_t frameBytes = channel.width * sizeof(float);
    if (take_.frameCount > bytesLeft_ / frameBytes) {
        isTooLong_ = true;
        return;
    }
    bytesLeft_ -= take_.frameCount * frameBytes;
    keyBytes += take_.frameCount * frameBytes;
    channel.keys.reserve(take_.frameCount * channel.width);
    for (std::size_t frame = 0; frame < frame_; ++frame)
        channel.keys.insert(channel.keys.end(), channel.first.begin(),
                            channel.first.begin() + static_cast<std::ptrdiff_t>(channel.width));
}

Loss LocalMotion::TellLoss() const {
    Loss loss = loss_;
    loss.words = flaws_.Words({Flaw::kShear, Flaw::kFlat, Flaw::kNowhere});
    return loss;
}

}  // namespace interchange
