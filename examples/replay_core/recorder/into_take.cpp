#include "replay_core/recorder/into_take.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "replay_core/motion/motion.h"
#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/take_nodes.h"
#include "replay_core/state/node_book.h"

namespace replay {
namespace {

// A take beside the joints of a capture.
class Comparison {
  public:
    Comparison(const Take& take, const Motion& motion)
        : take_(take), motion_(motion), names_(UniqueJointNames(motion)), nodes_(names_.size()) {
        for (std::size_t joint = 0; joint < names_.size(); ++joint)
            joints_.emplace(names_[joint], joint);
    }

    // Empty, or in what they differ.
    std::string Difference() {
        std::string difference = DifferentNode();
        for (std::size_t joint = 0; joint < names_.size() && difference.empty(); ++joint) {
            if (!nodes_[joint] && !missing_.contains(names_[joint]))
                difference = "has no \"" + names_[joint] + '"';
            else if (!HangsRight(joint))
                difference = "has \"" + names_[joint] + "\" below another node";
        }
        return difference;
    }

  private:
    // Brings the take's nodes to their joints until one has none.
    std::string DifferentNode() {
        for (TVL::CoreNode* node : take_.Book().Nodes())
            if (!Accept(*node)) return "has \"" + node->GetNodeName() + "\" as well";
        for (const StoredNode& node : take_.Missing()) {
            missing_.insert(node.name);
            if (!joints_.contains(node.name) && node.name != camera_ && node.name != guide_)
                return "misses \"" + node.name + "\", which the capture does not have";
        }
        return {};
    }

    bool Accept(TVL::CoreNode& node) {
        const std::string name = node.GetNodeName();
        if (LensLoan(node, 0)) return name == camera_;
        const auto joint = joints_.find(name);
        if (joint == joints_.end()) return name == guide_;
        return !std::exchange(nodes_[joint->second], &node);
    }

    // A node whose own parent is missing hangs where the host has put it.
    bool HangsRight(std::size_t joint) const {
        if (!nodes_[joint]) return true;
        const auto release = [](TVL::CNode* node) { AsCoreNode(node)->Destroy(); };
        const std::unique_ptr<TVL::CNode, decltype(release)> parent(nodes_[joint]->GetParent());
        const auto isParent = [&](TVL::CoreNode* node) {
            return node && parent && node->IsSameNode(AsCoreNode(parent.get()));
        };
        if (motion_.joints[joint].parent == kNoJoint)
            return !parent || std::ranges::none_of(nodes_, isParent);
        TVL::CoreNode* const expected = nodes_[motion_.joints[joint].parent];
        return !expected || isParent(expected);
    }

    const Take& take_;
    const Motion& motion_;
    std::vector<std::string> names_;  // of the joints
    std::string camera_ = CameraName(motion_);
    std::string guide_ = GuideName(motion_);
    std::map<std::string, std::size_t> joints_;  // by name
    std::vector<TVL::CoreNode*> nodes_;          // of the joints; null for those that are not there
    std::set<std::string> missing_;
};

// What is less comes from rounding: the host has both at one tick (see HostSeconds).
constexpr double kSameSeconds = 5e-10;

// Whether a frame of the recording lies between the two times, on neither.
bool HasFrameBetween(const Recording& recording, double first, double last) {
    const double from = first + kSameSeconds - recording.startSeconds;
    const double to = last - kSameSeconds - recording.startSeconds;
    const double frame = std::max(std::floor(from / recording.frameSeconds) + 1,
                                  static_cast<double>(recording.firstFrame));
    return frame < static_cast<double>(recording.endFrame) && frame * recording.frameSeconds < to;
}

// By how much the frames of two recordings with frames of one length miss each other.
double SecondsBeside(const Recording& one, const Recording& other) {
    const double seconds = one.startSeconds - other.startSeconds;
    return std::abs(std::remainder(seconds, one.frameSeconds));
}

}  // namespace

std::string WhyNotInto(const Take& take, const Motion& motion, const Recording& recording) {
    const std::string difference = Comparison(take, motion).Difference();
    if (!difference.empty()) return "is another skeleton (it " + difference + ")";
    for (const Recording& earlier : take.Recordings()) {
        if (!HasFrameBetween(earlier, recording.FirstSeconds(), recording.LastSeconds())) continue;
        if (earlier.frameSeconds != recording.frameSeconds)
            return "has a frame each " + NumberText(earlier.frameSeconds) +
                   " s (the capture each " + NumberText(recording.frameSeconds) + " s)";
        if (const double beside = SecondsBeside(earlier, recording); beside > kSameSeconds)
            return "has its frames " + NumberText(std::round(beside * 1e9) / 1e9) +
                   " s beside those of the capture";
    }
    return {};
}

std::string CaptureWrittenOver(const Take& take, const Recording& recording) {
    const auto isWrittenOver = [&](const Recording& earlier) {
        return earlier.capture != recording.capture &&
               earlier.FirstSeconds() <= recording.LastSeconds() + kSameSeconds &&
               recording.FirstSeconds() <= earlier.LastSeconds() + kSameSeconds;
    };
    const auto found = std::ranges::find_if(take.Recordings(), isWrittenOver);
    return found == take.Recordings().end() ? "" : found->capture;
}

std::optional<CaptureReport::Kept> TailBehind(std::span<const Recording> recordings,
                                              double lastSeconds) {
    double until = lastSeconds;
    for (const Recording& recording : recordings)
        until = std::max(until, recording.LastSeconds());
    if (until <= lastSeconds + kSameSeconds) return std::nullopt;
    return CaptureReport::Kept{lastSeconds, until};
}

}  // namespace replay
