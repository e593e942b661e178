#include "interchange/bvh_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "interchange/flaws.h"
#include "interchange/turns.h"
#include "tvl/transform_parts.h"

namespace interchange {
namespace {

using Place = std::array<double, 3>;

constexpr double kCostOfRounding = 1e-6;  // metres: what rounding a number may cost a place
constexpr double kSteady = 2e-6;         // metres: what a joint may move beside its parent and stay
constexpr double kSteadyOfReach = 4e-7;  // or of its distance from the origin, which is single
                                         // precision
constexpr double kBareTip = 0.1;         // metres: of a root that shows nothing

struct BvhJoint {
    std::size_t node = 0;          // of the take
    std::size_t parent = kNoNode;  // an earlier joint
    std::size_t depth = 0;
    bool isLeaf = true;
    bool moves = false;  // beside its parent
    std::string name{};
    Place offset{};  // units
};

Place PlaceOf(const TVL::CMatrix4& matrix) {
    return {matrix[3][0], matrix[3][1], matrix[3][2]};
}

double LengthOf(const Place& place) {
    return std::hypot(place[0], place[1], place[2]);
}

// Turned and moved alone: what the format holds of a node.
TVL::CMatrix4 Straightened(const TVL::CMatrix4& world) {
    TVL::CMatrix4 straight = RotationOf(TVL::PartsOf(world).rotation);
    std::copy_n(world[3], 3, straight[3]);
    return straight;
}

// Of a matrix that only turns and moves.
TVL::CMatrix4 Undone(const TVL::CMatrix4& straight) {
    TVL::CMatrix4 undone = TVL::CMatrix4::Identity();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            undone[row][column] = straight[column][row];
            undone[3][column] -= straight[3][row] * straight[column][row];
        }
    }
    return undone;
}

// Blanks part words there, and braces joints.
std::string NameFor(std::string name) {
    for (char& c : name)
        if (static_cast<unsigned char>(c) <= ' ' || c == '{' || c == '}' || c == '\x7F') c = '_';
    return name.empty() ? "joint" : name;
}

// In the order in which they are written, each with all that is below it behind it.
std::vector<BvhJoint> InFileOrder(const Take& take) {
    const std::vector<std::size_t> nodes = JointsOf(take);
    std::vector<std::vector<std::size_t>> below(take.nodes.size());
    std::vector<bool> isWritten(take.nodes.size());
    std::vector<std::pair<std::size_t, std::size_t>> open;  // node and parent joint, last one next
    for (const std::size_t node : nodes) {
        std::size_t above = take.nodes[node].parent;
        while (above != kNoNode && !isWritten[above])
            above = take.nodes[above].parent;
        isWritten[node] = true;
        if (above == kNoNode)
            open.emplace_back(node, kNoNode);
        else
            below[above].push_back(node);
    }
    std::ranges::reverse(open);
    std::vector<BvhJoint> joints;
    UniqueNames unique;
    while (!open.empty()) {
        const auto [node, parent] = open.back();
        open.pop_back();
        const std::size_t depth = parent == kNoNode ? 0 : joints[parent].depth + 1;
        if (parent != kNoNode) joints[parent].isLeaf = false;
        joints.push_back({.node = node, .parent = parent, .depth = depth});
        joints.back().name = unique.Of(NameFor(take.nodes[node].name));
        for (auto child = below[node].rbegin(); child != below[node].rend(); ++child)
            open.emplace_back(*child, joints.size() - 1);
    }
    return joints;
}

// Where a joint was seen beside its parent.
class PlaceRange {
  public:
    void Add(const Place& place) {
        ++count_;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sum_[axis] += place[axis];
            least_[axis] = std::min(least_[axis], place[axis]);
            most_[axis] = std::max(most_[axis], place[axis]);
        }
    }
    Place Mean() const { return {sum_[0] / count_, sum_[1] / count_, sum_[2] / count_}; }
    double Spread() const {
        return std::max({most_[0] - least_[0], most_[1] - least_[1], most_[2] - least_[2]}) / 2;
    }

  private:
    static constexpr double kMost = std::numeric_limits<double>::max();
    double count_ = 0;
    Place sum_{};
    Place least_{kMost, kMost, kMost};
    Place most_{-kMost, -kMost, -kMost};
};

int DigitsFor(double roundingPerUnit, int least) {
    constexpr double kMostDigits = 12;
    return static_cast<int>(std::clamp(std::ceil(std::log10(roundingPerUnit / kCostOfRounding)),
                                       double(least), kMostDigits));
}

class BvhWriter {
  public:
    BvhWriter(const Take& take, Poses& poses, const BvhChoice& choice, std::ostream& out)
        : take_(take),
          poses_(poses),
          metresPerUnit_(choice.metresPerUnit),
          order_(choice.order),
          letters_(choice.order),
          out_(out),
          flaws_(take),
          joints_(InFileOrder(take)),
          world_(take.nodes.size(), TVL::CMatrix4::Identity()),
          straight_(take.nodes.size(), TVL::CMatrix4::Identity()) {}

    Loss Write(const FrameDone& done) {
        if (joints_.empty() || !FindOffsets(done)) return {};
        WriteHierarchy();
        if (!WriteMotion(done)) return {};
        loss_.words = flaws_.Words({Flaw::kScale, Flaw::kShear, Flaw::kMirror, Flaw::kNowhere});
        for (const TakeNode& node : take_.nodes)
            if (node.kind == NodeKind::kCamera)
                loss_.words.push_back("the camera \"" + node.name + '"');
        if (take_.startSeconds != 0) loss_.words.push_back(LostStart(take_));
        return std::move(loss_);
    }

  private:
    // What is nowhere stays where it was.
    void Look(std::size_t frame) {
        poses_.At(take_.Seconds(frame), world_);
        for (const BvhJoint& joint : joints_)
            if (IsFinite(world_[joint.node]))
                straight_[joint.node] = Straightened(world_[joint.node]);
    }

    Place BesideParent(const BvhJoint& joint) const {
        const TVL::CMatrix4& straight = straight_[joint.node];
        if (joint.parent == kNoNode) return PlaceOf(straight);
        return PlaceOf(straight * Undone(straight_[joints_[joint.parent].node]));
    }

    bool FindOffsets(const FrameDone& done) {
        std::vector<PlaceRange> ranges(joints_.size());
        double reach = 0;
        for (std::size_t frame = 0; frame < take_.frameCount; ++frame) {
            Look(frame);
            if (frame == 0) FindTips();
            for (std::size_t i = 0; i < joints_.size(); ++i) {
                ranges[i].Add(BesideParent(joints_[i]));
                reach = std::max(reach, LengthOf(PlaceOf(straight_[joints_[i].node])));
            }
            if (!done()) return false;
        }
        SetOffsets(ranges, std::max(kSteady, kSteadyOfReach * reach));
        return true;
    }

    void SetOffsets(const std::vector<PlaceRange>& ranges, double steady) {
        double longest = 0;  // way from a root to a tip, metres
        std::vector<double> ways(joints_.size());
        for (std::size_t i = 0; i < joints_.size(); ++i) {
            BvhJoint& joint = joints_[i];
            joint.moves = joint.parent == kNoNode || ranges[i].Spread() > steady;
            if (joint.parent == kNoNode) continue;
            const Place mean = ranges[i].Mean();
            for (std::size_t axis = 0; axis < 3; ++axis)
                joint.offset[axis] = Rounded(mean[axis] / metresPerUnit_, OffsetDigits());
            ways[i] = ways[joint.parent] + LengthOf(mean) + ranges[i].Spread();
            longest = std::max(longest, ways[i]);
        }
        constexpr double kMetresPerDegree = 0.01;  // half a degree at a metre's distance, and more
        turnDigits_ = DigitsFor(kMetresPerDegree * longest / 2, kFewestTurnDigits);
    }

    // The vertex that is furthest from the joint; without one half of the way from its parent on.
    void FindTips() {
        tips_.assign(joints_.size(), {});
        for (std::size_t i = 0; i < joints_.size(); ++i) {
            const BvhJoint& joint = joints_[i];
            const TVL::CMatrix4 own = Undone(straight_[joint.node]);
            for (const ShapeVertex& vertex : take_.nodes[joint.node].shape) {
                TVL::CMatrix4 at = TVL::CMatrix4::Identity();
                std::ranges::copy(vertex.place, at[3]);
                const Place place = PlaceOf(at * world_[joint.node] * own);
                if (LengthOf(place) > LengthOf(tips_[i])) tips_[i] = place;
            }
            if (LengthOf(tips_[i]) > 0) continue;
            tips_[i] = {0, kBareTip, 0};
            if (joint.parent == kNoNode) continue;
            const Place back = PlaceOf(straight_[joints_[joint.parent].node] * own);
            tips_[i] = {-back[0] / 2, -back[1] / 2, -back[2] / 2};
        }
    }

    void WriteHierarchy() {
        out_ << "HIERARCHY\n";
        for (std::size_t i = 0; i < joints_.size(); ++i) {
            const BvhJoint& joint = joints_[i];
            const std::string indent(joint.depth, '\t');
            out_ << indent << (joint.parent == kNoNode ? "ROOT " : "JOINT ") << joint.name << '\n'
                 << indent << "{\n";
            WriteOffset(indent, joint.offset);
            out_ << indent << "\tCHANNELS "
                 << (joint.moves ? "6 Xposition Yposition Zposition" : "3");
            for (const char axis : letters_)
                out_ << ' ' << axis << "rotation";
            out_ << '\n';
            if (joint.isLeaf) WriteEndSite(indent + '\t', tips_[i]);
            const std::size_t next = i + 1 < joints_.size() ? joints_[i + 1].depth : 0;
            for (std::size_t depth = joint.depth + 1; depth > next; --depth)
                out_ << std::string(depth - 1, '\t') << "}\n";
        }
    }

    void WriteEndSite(const std::string& indent, const Place& metres) {
        Place tip;
        for (std::size_t axis = 0; axis < 3; ++axis)
            tip[axis] = Rounded(metres[axis] / metresPerUnit_, OffsetDigits());
        out_ << indent << "End Site\n" << indent << "{\n";
        WriteOffset(indent, tip);
        out_ << indent << "}\n";
    }

    void WriteOffset(const std::string& indent, const Place& units) {
        std::string line = indent + "\tOFFSET";
        for (const double number : units)
            Append(line, number, OffsetDigits());
        out_ << line << '\n';
    }

    bool WriteMotion(const FrameDone& done) {
        out_ << "MOTION\nFrames: " << take_.frameCount
             << "\nFrame Time: " << NumberText(take_.frameSeconds) << '\n';
        std::vector<Turns> turns(joints_.size());
        std::vector<TVL::CMatrix4> written(joints_.size());
        for (std::size_t frame = 0; frame < take_.frameCount; ++frame) {
            Look(frame);
            std::string line;
            for (std::size_t i = 0; i < joints_.size(); ++i)
                WriteJoint(i, take_.Seconds(frame), turns[i], written, line);
            line.front() = ' ';
            out_ << std::string_view(line).substr(1) << '\n';
            if (!done()) return false;
        }
        return true;
    }

    // Against where the file has the parent, so that what rounding costs does not add up.
    void WriteJoint(std::size_t i, double seconds, Turns& turns,
                    std::vector<TVL::CMatrix4>& written, std::string& line) {
        const BvhJoint& joint = joints_[i];
        const TVL::CMatrix4 above =
            joint.parent == kNoNode ? TVL::CMatrix4::Identity() : written[joint.parent];
        const TVL::CMatrix4 local = straight_[joint.node] * Undone(above);
        Place place = joint.offset;
        if (joint.moves) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                place[axis] =
                    Rounded(local[3][static_cast<int>(axis)] / metresPerUnit_, PlaceDigits());
                Append(line, place[axis], PlaceDigits());
            }
        }
        turns = TurnsOf(local, order_, std::pow(10, -turnDigits_), turns);
        for (const double turn : turns)
            Append(line, turn, turnDigits_);
        TVL::CMatrix4 there = RotationOf(order_, turns);
        for (std::size_t axis = 0; axis < 3; ++axis)
            there[3][static_cast<int>(axis)] = place[axis] * metresPerUnit_;
        written[i] = there * above;
        flaws_.Look(joint.node, world_[joint.node], seconds);
        loss_.Compare(take_.nodes[joint.node], straight_[joint.node], written[i], seconds);
    }

    static double Rounded(double number, int digits) {
        const double whole = std::pow(10, digits);
        return std::round(number * whole) / whole;
    }

    // Behind a blank.
    static void Append(std::string& line, double number, int digits) {
        char text[400];
        const char* end =
            std::to_chars(text, text + sizeof text, number + 0.0, std::chars_format::fixed, digits)
                .ptr;
        while (digits > 0 && end[-1] == '0')
            --end, --digits;
        if (digits == 0 && end[-1] == '.') --end;
        (line += ' ') += std::string_view(text, end);
    }

    static constexpr int kFewestTurnDigits = 4;
    int PlaceDigits() const { return DigitsFor(metresPerUnit_, 0); }
    int OffsetDigits() const { return PlaceDigits() + 1; }  // once in the file, and in each frame

    const Take& take_;
    Poses& poses_;
    double metresPerUnit_;
    TurnOrder order_;
    std::string letters_;
    std::ostream& out_;
    FlawNotes flaws_;
    std::vector<BvhJoint> joints_;
    std::vector<TVL::CMatrix4> world_;     // of the nodes, in the frame that is looked at
    std::vector<TVL::CMatrix4> straight_;  // the same as the file can hold it
    std::vector<Place> tips_;              // of the joints, metres
    int turnDigits_ = kFewestTurnDigits;
    Loss loss_;
};

}  // namespace

std::vector<std::size_t> JointsOf(const Take& take) {
    std::vector<std::size_t> joints;
    std::vector<bool> isBelow(take.nodes.size());  // a joint, or it is one
    for (std::size_t i = 0; i < take.nodes.size(); ++i) {
        const TakeNode& node = take.nodes[i];
        isBelow[i] =
            node.kind == NodeKind::kJoint || (node.parent != kNoNode && isBelow[node.parent]);
        if (isBelow[i] && node.kind != NodeKind::kCamera) joints.push_back(i);
    }
    return joints;
}

Loss WriteBvh(const Take& take, Poses& poses, const BvhChoice& choice, std::ostream& out,
              const FrameDone& done) {
    return BvhWriter(take, poses, choice, out).Write(done);
}

}  // namespace interchange
