#include "replay_core/recorder/record_take.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/progress_line.h"
#include "replay_core/recorder/brackets.h"
#include "replay_core/recorder/host_time.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/scenery.h"
#include "replay_core/recorder/take_camera.h"
#include "replay_core/recorder/transform_parts.h"
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
    FrameWriter(const PlannedTake& planned, const RecordedTake& recorded,
                const RecordingState& state)
        : recording_(planned.recording),
          nodes_(recorded.nodes),
          camera_(recorded.camera),
          state_(state),
          poses_(planned.motion, recording_.metresPerUnit, recorded.lifts) {}

    // Empty, or why the frame is not whole.
    std::string Write(std::size_t frame) {
        const double seconds = recording_.Seconds(frame);
        const std::span<const TVL::CMatrix4> pose = poses_.At(frame);
        if (state_.stopRequested) return Stopped(frame);
        if (scales_.empty()) Prepare(pose, seconds);
        // Parents first: what a child's controller keeps is relative to where its parent is then.
        for (std::size_t joint = 0; joint < pose.size(); ++joint) {
            if (state_.stopRequested) return Stopped(frame);
            const TransformLoan snapshot(*nodes_.joints[joint], seconds);
            if (!snapshot)
                return "\"" + nodes_.joints[joint]->GetNodeName() +
                       "\" cannot be moved by the host";
            snapshot->SetWorldTransform(WithObjectScale(pose[joint], scales_[joint]));
        }
        if (state_.stopRequested) return Stopped(frame);
        if (!camera_.empty())
            WriteMoment(*nodes_.camera, camera_[frame - recording_.firstFrame], cameraScale_,
                        seconds);
        return {};
    }

  private:
    static std::string Stopped(std::size_t frame) {
        return "the recording was stopped at frame " + std::to_string(frame);
    }

    // At the first frame, before anything has moved. A camera that was there stays where it is,
    // unless it is to follow.
    void Prepare(std::span<const TVL::CMatrix4> pose, double seconds) {
        for (TVL::CoreNode* node : nodes_.joints)
            scales_.push_back(ObjectScaleOf(*node, seconds));
        cameraScale_ = ObjectScaleOf(*nodes_.camera, seconds);
        if (nodes_.isCameraNew) PlaceCamera(*nodes_.camera, SurroundOf(pose), seconds);
    }

    const Recording& recording_;
    const TakeNodes& nodes_;
    const std::vector<CameraMoment>& camera_;
    const RecordingState& state_;
    MeantPoses poses_;
    std::vector<ObjectScale> scales_;  // of the joints
    ObjectScale cameraScale_;
};

// Where Ctrl-C stopped it: the frames before that one are recorded.
std::string Interrupted(const PlannedTake& planned, const RecordedTake& recorded) {
    return planned.recording.capture + ": the recording was stopped at frame " +
           std::to_string(recorded.recording.endFrame) + " of " +
           std::to_string(planned.recording.endFrame);
}

// Goes through the frames and moves the end of `recorded.recording` behind each that is whole. The
// result is empty, or says why it broke off.
std::string WriteFrames(const PlannedTake& planned, const RecordSettings& settings,
                        const RecordingState& state, RecordedTake& recorded) {
    const Recording& recording = planned.recording;
    FrameWriter writer(planned, recorded, state);
    platform::ProgressLine progress(settings.showsProgress, "Recording " + planned.take->Name(),
                                    platform::ProgressIn::kPercent, recording.FrameCount());
    for (std::size_t frame = recording.firstFrame; frame < recording.endFrame; ++frame) {
        std::string error = writer.Write(frame);
        if (!error.empty()) return error;
        recorded.recording.endFrame = frame + 1;
        if (!progress.Advance()) recorded.isInterrupted = frame + 1 < recording.endFrame;
        if (recorded.isInterrupted) return Interrupted(planned, recorded);
    }
    return {};
}

// Whether all frames were written or the work broke off among them. What ended it can have taken
// the camera out of the scene.
void Conclude(const PlannedTake& planned, const RecordedTake& recorded) {
    if (recorded.recording.FrameCount() == 0) return;
    if (!recorded.camera.empty() && planned.take->Book().Has(recorded.nodes.camera))
        SettleLens(*recorded.nodes.camera, recorded.recording.LastSeconds());
    planned.take->Note(recorded.recording);
}

// What goes beyond the capture itself. False if Ctrl-C stopped it.
bool PlanFrames(const PlannedTake& planned, const RecordSettings& settings,
                RecordedTake& recorded) {
    const Motion& motion = planned.motion;
    const Recording& recording = planned.recording;
    if (settings.ground) {
        platform::ProgressLine progress(settings.showsProgress, "Finding the ground",
                                        platform::ProgressIn::kPercent, recording.FrameCount());
        recorded.lifts = LiftsOnto(*settings.ground, motion, recording, progress);
    }
    recorded.isInterrupted =
        settings.ground && recorded.lifts.metres.size() < recording.FrameCount();
    if (recorded.isInterrupted || !settings.followsWithCamera) return !recorded.isInterrupted;
    MeantPoses poses(motion, recording.metresPerUnit, recorded.lifts);
    recorded.camera = FollowTake(motion, {recording.firstFrame, recording.endFrame}, poses,
                                 recorded.nodes.hostUnitsPerMetre);
    return true;
}

// The result is empty, or says why there is no guide object.
std::string MakeGuideOf(TVL::AdaptorInterface& adaptor, const PlannedTake& planned,
                        const TakeNodes& nodes, const RecordingState& state) {
    if (!planned.guide || state.stopRequested) return {};
    return MakeGuide(adaptor, *planned.take, GuideName(planned.motion), *planned.guide,
                     nodes.hostUnitsPerMetre);
}

// The work for one take inside the undo group. The result is empty, or says why it broke off.
std::string RecordTake(TVL::AdaptorInterface& adaptor, const PlannedTake& planned,
                       const RecordSettings& settings, RecordingState& state,
                       RecordedTake& recorded) {
    const Recording& recording = planned.recording;
    recorded.recording = recording;
    recorded.recording.endFrame = recording.firstFrame;
    recorded.nodes =
        FindOrMakeNodes(adaptor, planned.motion, recording.metresPerUnit, *planned.take);
    if (!recorded.nodes.error.empty()) return recorded.nodes.error;
    recorded.framesWithoutKey = FramesWithoutKey(adaptor, recording);

    // The keys of the present pose that a recording begins with then fall on the first frame.
    GoTo(adaptor, recording.FirstSeconds());
    std::string guideError = MakeGuideOf(adaptor, planned, recorded.nodes, state);
    if (!guideError.empty()) return guideError;
    const RecordingBracket bracket(adaptor, *planned.take);
    if (bracket.Status() != 0) return Refused("the host begins no recording now", bracket.Status());
    if (!PlanFrames(planned, settings, recorded)) return Interrupted(planned, recorded);
    std::string error = WriteFrames(planned, settings, state, recorded);
    Conclude(planned, recorded);
    return error;
}

std::string GroupName(std::span<const PlannedTake> plan) {
    if (plan.size() == 1) return "Record " + plan.front().take->Name();
    return "Record " + std::to_string(plan.size()) + " takes";
}

}  // namespace

RecordedTakes RecordTakes(TVL::AdaptorInterface& adaptor, std::span<const PlannedTake> plan,
                          const RecordSettings& settings, RecordingState& state) {
    RecordedTakes recorded;
    const KeyboardFocus focus(adaptor);
    UndoGroup group(adaptor, GroupName(plan));
    if (group.Status() != 0 || !adaptor.IsHoldingUndo()) {
        recorded.error = Refused("the host opens no undo group now", group.Status());
        return recorded;
    }
    // Ahead of the running: what is deleted then is taken for the user's wish that it stops.
    for (const PlannedTake& planned : plan)
        if (planned.replaces) planned.take->StartAnew();
    const Running running(state);
    std::vector<Recording> inScene;
    for (const PlannedTake& planned : plan) {
        RecordedTake& take = recorded.takes.emplace_back();
        recorded.error = RecordTake(adaptor, planned, settings, state, take);
        if (take.recording.FrameCount() > 0 && planned.take->IsThere())
            inScene.push_back(take.recording);
        if (!recorded.error.empty()) break;
    }
    if (recorded.takes.back().isInterrupted && plan.size() > 1)
        recorded.error += ", capture " + std::to_string(recorded.takes.size()) + " of " +
                          std::to_string(plan.size()) + "; those before it are whole";
    SetRange(adaptor, inScene, settings.range);
    const bool isInterrupted = recorded.takes.back().isInterrupted && !inScene.empty();
    if (recorded.error.empty() || state.stopRequested || isInterrupted) {
        std::erase_if(recorded.takes,
                      [](const RecordedTake& take) { return take.recording.FrameCount() == 0; });
        const std::int32_t status = group.Keep();
        if (status != 0) recorded.error = Refused("the undo group could not be ended", status);
    } else {
        recorded.takes.clear();
    }
    return recorded;
}

}  // namespace replay
