#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "tvl/matrix4.h"

// A take as other programs are told of it, whatever host and Core it comes from: metres, seconds, Y
// up, right-handed.
namespace interchange {

inline constexpr std::size_t kNoNode = std::numeric_limits<std::size_t>::max();

enum class NodeKind {
    kJoint,   // it moves, and is no camera
    kCamera,  // looks along its own negative z axis, its y axis is up
    kOther,   // stands still or goes along with its parent
};

// What a node looks like, in its own space: three vertices a triangle.
struct ShapeVertex {
    std::array<float, 3> place{};   // metres
    std::array<float, 3> normal{};  // of unit length
    std::array<float, 3> colour{};  // red, green and blue from 0 to 1
};

struct Lens {
    double fieldOfView = 0;   // radians, at the take's first frame
    int fieldOfViewType = 0;  // across the width (0), the height (1) or the diagonal (2)
    bool moves = false;       // it has another field of view later in the take
};

struct TakeNode {
    std::string name;  // of its own in the take: as its Core knows it, or else as the host does
    std::uint32_t handle = 0;      // the host's
    std::size_t parent = kNoNode;  // the nearest node of the take above it, an earlier one
    NodeKind kind = NodeKind::kOther;
    std::vector<ShapeVertex> shape{};
    std::optional<Lens> lens{};  // a camera's
};

struct Take {
    std::string name;
    double startSeconds = 0;       // of its first frame, in the scene
    double frameSeconds = 1;       // from one frame to the next, above 0
    std::size_t frameCount = 1;    // at least 1
    std::vector<TakeNode> nodes;   // a parent before its children
    std::int64_t firstNumber = 0;  // of its first frame in the capture that was recorded last
    double lastSeconds = std::numeric_limits<double>::infinity();  // no frame is later

    double Seconds(std::size_t frame) const {
        return std::min(startSeconds + static_cast<double>(frame) * frameSeconds, lastSeconds);
    }
    double EndSeconds() const { return Seconds(frameCount - 1); }

    // The same span of time in frames of another length. Where they do not share it out, it ends
    // with the last that is not behind its end, or with one at its end, which is nearer to the one
    // before.
    Take Resampled(double newFrameSeconds, bool keepsEnd) const;
};

// Gives each name once: of equal ones the first stands, and others are numbered from 2.
class UniqueNames {
  public:
    std::string Of(const std::string& name);

  private:
    std::set<std::string> taken_;
};

// Where the nodes of a take are.
class Poses {
  public:
    // From each node's own space, in metres, to the world: `world` has an element for each node of
    // the take. The rows of a node that nobody scaled have unit length.
    virtual void At(double seconds, std::span<TVL::CMatrix4> world) = 0;

  protected:
    ~Poses() = default;
};

// How far from at right angles two of a matrix's axes are at most: the cosine between them.
double SkewOf(const TVL::CMatrix4& matrix);

// What a file could not hold of a take. The places of joints are compared, world space, at each of
// its frames.
struct Loss {
    double metres = 0;   // the furthest that a joint is from where it was
    std::string node{};  // which, and when
    double seconds = 0;
    std::vector<std::string> words{};  // what it is that was left out, a line each; names the node

    // At a frame a joint was in one place and is in another in the file.
    void Compare(const TakeNode& joint, const TVL::CMatrix4& was, const TVL::CMatrix4& is,
                 double at);
};

}  // namespace interchange
