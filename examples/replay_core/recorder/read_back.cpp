#include "replay_core/recorder/read_back.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "replay_core/motion/numbers.h"
#include "replay_core/motion/pose.h"
#include "replay_core/recorder/geometry.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/recorder/text_file.h"

namespace replay {
namespace {

constexpr double kInfinitelyFar = std::numeric_limits<double>::infinity();

// What is not a number is infinitely far off.
void Raise(double& largest, double error) {
    if (!(error <= largest)) largest = std::isnan(error) ? kInfinitelyFar : error;
}

class PoseReader {
  public:
    PoseReader(const Motion& motion, const RecordedTake& recorded, TextFile* csv)
        : motion_(motion),
          recorded_(recorded),
          nodes_(recorded.nodes),
          csv_(csv),
          poses_(motion, recorded.recording.metresPerUnit, recorded.lifts) {
        for (TVL::CoreNode* node : nodes_.joints)
            names_.push_back(CsvField(node->GetNodeName()));
        if (csv_) csv_->Write("frame,seconds,joint,x,y,z\n");
    }

    void Read(std::size_t frame, ReadBack& result) {
        const double seconds = recorded_.recording.Seconds(frame);
        const std::span<const TVL::CMatrix4> pose = poses_.At(frame);
        Measure(frame, pose, result.figure);
        for (std::size_t joint = 0; joint < pose.size(); ++joint) {
            const TransformLoan snapshot(*nodes_.joints[joint], seconds);
            if (!snapshot) {
                result.error = "\"" + nodes_.joints[joint]->GetNodeName() +
                               "\" cannot be read back from the host";
                return;
            }
            const TVL::CMatrix4 place = snapshot->GetWorldTransform();
            Raise(result.maxPositionErrorMetres,
                  Length(Difference(PlaceOf(place), PlaceOf(pose[joint]))));
            if (csv_) WriteRow(frame, seconds, joint, place[3]);
        }
        if (!recorded_.camera.empty())
            ReadLens(recorded_.camera[frame - recorded_.recording.firstFrame], seconds, result);
    }

  private:
    void Measure(std::size_t frame, std::span<const TVL::CMatrix4> pose,
                 CaptureReport::Figure& figure) const {
        const Vector3 place = PlaceOf(pose.front());
        const double height = HeightOf(motion_, recorded_.recording.metresPerUnit, pose);
        if (frame == recorded_.recording.firstFrame)
            figure = {.heightMetres = height, .start = place};
        figure.mostHeightMetres = std::max(figure.mostHeightMetres, height);
        figure.furthestMetres =
            std::max(figure.furthestMetres, Length(Difference(place, figure.start)));
    }

    void ReadLens(const CameraMoment& meant, double seconds, ReadBack& result) const {
        const LensLoan lens(*nodes_.camera, seconds);
        if (!lens) {
            result.error = "the camera cannot be read back from the host";
            return;
        }
        Raise(result.maxFieldOfViewErrorDegrees,
              std::abs(lens->GetFieldOfView() - meant.fieldOfViewDegrees));
        Raise(
            result.maxTargetDistanceErrorMetres,
            std::abs(lens->GetTargetDistance() - meant.targetDistance) / nodes_.hostUnitsPerMetre);
    }

    void WriteRow(std::size_t frame, double seconds, std::size_t joint, const double* place) {
        std::string row = std::to_string(frame) + ',' + NumberText(seconds) + ',' + names_[joint];
        for (const double coordinate : std::span(place, 3))
            row += ',' + NumberText(coordinate);
        csv_->Write(row += '\n');
    }

    const Motion& motion_;
    const RecordedTake& recorded_;
    const TakeNodes& nodes_;
    TextFile* csv_;
    MeantPoses poses_;
    std::vector<std::string> names_;  // as fields of a row
};

}  // namespace

ReadBack ReadTake(const Motion& motion, const RecordedTake& recorded, TextFile* csv,
                  platform::ProgressLine& progress) {
    ReadBack result;
    PoseReader reader(motion, recorded, csv);
    const Recording& recording = recorded.recording;
    for (std::size_t frame = recording.firstFrame; frame < recording.endFrame; ++frame) {
        reader.Read(frame, result);
        if (!result.error.empty()) break;
        if (progress.Advance() || frame + 1 == recording.endFrame) continue;
        result.error = "the recording is whole, but reading it back was stopped";
        break;
    }
    return result;
}

}  // namespace replay
