#include "replay_core/recorder/record_take.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "replay_core/motion/pose.h"
#include "replay_core/recorder/brackets.h"
#include "replay_core/recorder/camera_placement.h"
#include "replay_core/recorder/object_scale.h"
#include "replay_core/recorder/progress_bar.h"
#include "replay_core/recorder/transform_loan.h"
#include "tvl/error_code.h"

namespace replay {
namespace {

// The adaptor declares its codes in the registry that this Core has placed.
std::string Refused(const char* what, std::int32_t status) {
    return std::string(what) + ": " +
           TVL::ErrorCode::GetInstance()->GetByValue(status)->GetMessage();
}

class Running {
  public:
    explicit Running(RecordingState& state) : state_(state) { state_ = {.isRunning = true}; }
    ~Running() { state_ = {}; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

  private:
    RecordingState& state_;
};

// The work between the two brackets, with what it needs for every frame.
class FrameWriter {
  public:
    FrameWriter(const Motion& motion, double metresPerUnit, const TakeNodes& nodes,
                const RecordingState& state)
        : motion_(motion),
          metresPerUnit_(metresPerUnit),
          nodes_(nodes),
          state_(state),
          pose_(motion.joints.size()) {}

    // Empty, or why the frame is not whole.
    std::string Write(std::size_t frame) {
        const double seconds = FrameTime(motion_, frame);
        EvaluatePose(motion_, frame, metresPerUnit_, pose_);
        if (state_.stopRequested) return Stopped(frame);
        if (scales_.empty()) Prepare(seconds);
        // Parents first: what a child's controller keeps is relative to where its parent is then.
        for (std::size_t joint = 0; joint < pose_.size(); ++joint) {
            if (state_.stopRequested) return Stopped(frame);
            const TransformLoan snapshot(*nodes_.joints[joint], seconds);
            if (!snapshot)
                return "\"" + nodes_.joints[joint]->GetNodeName() +
                       "\" cannot be moved by the host";
            snapshot->SetWorldTransform(WithObjectScale(pose_[joint], scales_[joint]));
        }
        return {};
    }

  private:
    static std::string Stopped(std::size_t frame) {
        return "the recording was stopped at frame " + std::to_string(frame);
    }

    // At the first frame, before anything has moved. A camera that was there stays where it is.
    void Prepare(double seconds) {
        for (TVL::CoreNode* node : nodes_.joints)
            scales_.push_back(ObjectScaleOf(*node, seconds));
        if (nodes_.isCameraNew) PlaceCamera(*nodes_.camera, SurroundOf(pose_), seconds);
    }

    const Motion& motion_;
    double metresPerUnit_;
    const TakeNodes& nodes_;
    const RecordingState& state_;
    std::vector<TVL::CMatrix4> pose_;
    std::vector<ObjectScale> scales_;  // of the joints
};

// Goes through the frames and moves the end of `recorded.frames` behind each that is whole. The
// result is empty, or says why it broke off.
std::string WriteFrames(const PlannedTake& planned, const RecordSettings& settings,
                        const RecordingState& state, RecordedTake& recorded) {
    FrameWriter writer(planned.motion, settings.metresPerUnit, recorded.nodes, state);
    ProgressBar progress(settings.showsProgress, "Recording " + planned.take->Name(),
                         planned.frames.Count());
    for (std::size_t frame = planned.frames.first; frame < planned.frames.end; ++frame) {
        std::string error = writer.Write(frame);
        if (!error.empty()) return error;
        recorded.frames.end = frame + 1;
        progress.Advance();
    }
    return {};
}

// The work for one take inside the undo group. The result is empty, or says why it broke off.
std::string RecordTake(TVL::AdaptorInterface& adaptor, const PlannedTake& planned,
                       const RecordSettings& settings, RecordingState& state,
                       RecordedTake& recorded) {
    const FrameRange frames = planned.frames;
    recorded.frames = {frames.first, frames.first};
    recorded.nodes = FindOrMakeNodes(adaptor, planned.motion, *planned.take);
    if (!recorded.nodes.error.empty()) return recorded.nodes.error;

    // The keys of the present pose that a recording begins with then fall on the first frame.
    adaptor.SetCurrentTime(FrameTime(planned.motion, frames.first));
    const RecordingBracket bracket(adaptor, *planned.take);
    if (bracket.Status() != 0) return Refused("the host begins no recording now", bracket.Status());
    std::string error = WriteFrames(planned, settings, state, recorded);
    if (recorded.frames.Count() > 0)
        planned.take->Note({planned.capture, settings.metresPerUnit, planned.motion.frameSeconds,
                            recorded.frames.first, recorded.frames.end});
    return error;
}

std::string GroupName(std::span<const PlannedTake> plan) {
    if (plan.size() == 1) return "Record " + plan.front().take->Name();
    return "Record " + std::to_string(plan.size()) + " takes";
}

}  // namespace

double FrameTime(const Motion& motion, std::size_t frame) {
    return static_cast<double>(frame) * motion.frameSeconds;
}

RecordedTakes RecordTakes(TVL::AdaptorInterface& adaptor, std::span<const PlannedTake> plan,
                          const RecordSettings& settings, RecordingState& state) {
    RecordedTakes recorded;
    const KeyboardFocus focus(adaptor);
    const Running running(state);
    UndoGroup group(adaptor, GroupName(plan));
    if (group.Status() != 0 || !adaptor.IsHoldingUndo()) {
        recorded.error = Refused("the host opens no undo group now", group.Status());
        return recorded;
    }
    for (const PlannedTake& planned : plan) {
        recorded.error =
            RecordTake(adaptor, planned, settings, state, recorded.takes.emplace_back());
        if (!recorded.error.empty()) break;
    }
    if (recorded.error.empty() || state.stopRequested) {
        const std::int32_t status = group.Keep();
        if (status != 0) recorded.error = Refused("the undo group could not be ended", status);
    }
    return recorded;
}

}  // namespace replay
