#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "replay_core/motion/motion.h"
#include "replay_core/motion/pose.h"

namespace replay {

// By how much the figure of a capture is lifted as a whole, straight up, in each of the frames that
// are recorded.
struct Lifts {
    double Of(std::size_t frame) const { return metres.empty() ? 0 : metres[frame - firstFrame]; }
    std::size_t LiftedFrames() const {
        return metres.size() - static_cast<std::size_t>(std::ranges::count(metres, 0.0));
    }
    double Most() const { return metres.empty() ? 0 : std::ranges::max(metres); }

    std::size_t firstFrame = 0;
    std::vector<double> metres;  // 0 or more; empty if no frame is lifted
};

// The poses that a recording is meant to bring into the scene: the capture's own kinematics,
// lifted.
class MeantPoses {
  public:
    // The capture is the caller's and outlives this object.
    MeantPoses(const Motion& motion, double metresPerUnit, Lifts lifts)
        : motion_(motion),
          metresPerUnit_(metresPerUnit),
          lifts_(std::move(lifts)),
          pose_(motion.joints.size()) {}

    // See EvaluatePose. Holds until the next call.
    std::span<const TVL::CMatrix4> At(std::size_t frame) {
        EvaluatePose(motion_, frame, metresPerUnit_, pose_);
        for (TVL::CMatrix4& joint : pose_)
            joint[3][1] += lifts_.Of(frame);
        return pose_;
    }

  private:
    const Motion& motion_;
    double metresPerUnit_;
    Lifts lifts_;
    std::vector<TVL::CMatrix4> pose_;
};

}  // namespace replay
