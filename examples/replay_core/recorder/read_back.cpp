#include "replay_core/recorder/read_back.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "replay_core/motion/numbers.h"
#include "replay_core/motion/pose.h"
#include "replay_core/recorder/csv.h"
#include "replay_core/recorder/transform_loan.h"

namespace replay {
namespace {

constexpr double kInfinitelyFar = std::numeric_limits<double>::infinity();

double Distance(const double* a, const double* b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

class Reader {
  public:
    Reader(const Motion& motion, double metresPerUnit, const TakeNodes& nodes, WholeFile* csv)
        : motion_(motion),
          metresPerUnit_(metresPerUnit),
          nodes_(nodes),
          csv_(csv),
          pose_(motion.joints.size()) {
        for (TVL::CoreNode* node : nodes.joints)
            names_.push_back(CsvField(node->GetNodeName()));
        if (csv_) csv_->Write("frame,seconds,joint,x,y,z\n");
    }

    void Read(std::size_t frame, ReadBack& result) {
        const double seconds = FrameTime(motion_, frame);
        EvaluatePose(motion_, frame, metresPerUnit_, pose_);
        for (std::size_t joint = 0; joint < pose_.size(); ++joint) {
            const TransformLoan snapshot(*nodes_.joints[joint], seconds);
            if (!snapshot) {
                result.error = "\"" + nodes_.joints[joint]->GetNodeName() +
                               "\" cannot be read back from the host";
                return;
            }
            const TVL::CMatrix4 place = snapshot->GetWorldTransform();
            const double distance = Distance(place[3], pose_[joint][3]);
            // A place that is not a number is infinitely far away.
            if (!(distance <= result.maxPositionErrorMetres))
                result.maxPositionErrorMetres = std::isnan(distance) ? kInfinitelyFar : distance;
            if (csv_) WriteRow(frame, seconds, joint, place[3]);
        }
    }

  private:
    void WriteRow(std::size_t frame, double seconds, std::size_t joint, const double* place) {
        std::string row = std::to_string(frame) + ',' + NumberText(seconds) + ',' + names_[joint];
        for (const double coordinate : std::span(place, 3))
            row += ',' + NumberText(coordinate);
        csv_->Write(row += '\n');
    }

    const Motion& motion_;
    double metresPerUnit_;
    const TakeNodes& nodes_;
    WholeFile* csv_;
    std::vector<TVL::CMatrix4> pose_;
    std::vector<std::string> names_;  // as fields of a row
};

}  // namespace

ReadBack ReadPositions(const Motion& motion, double metresPerUnit, const RecordedTake& recorded,
                       WholeFile* csv) {
    ReadBack result;
    Reader reader(motion, metresPerUnit, recorded.nodes, csv);
    for (std::size_t frame = recorded.frames.first; frame < recorded.frames.end; ++frame) {
        reader.Read(frame, result);
        if (!result.error.empty()) break;
    }
    return result;
}

}  // namespace replay
