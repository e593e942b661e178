#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "interchange/flaws.h"
#include "interchange/take.h"

namespace interchange {

// A translation (metres), a rotation (x, y, z, w) or a scale of a node beside its parent.
struct Channel {
    std::size_t width = 3;         // numbers of a value
    std::array<float, 4> first{};  // at the first frame
    std::vector<float> keys{};     // a value for each frame; empty if it stays as it is
};

struct NodeMotion {
    Channel translation;
    Channel rotation{.width = 4, .first = {0, 0, 0, 1}};
    Channel scale{.first = {1, 1, 1}};
};

// In single precision, which takes no number beyond its range.
float Narrowed(double number);

// The motion of the nodes of a take as a format has it that keeps translation, rotation and scale
// apart, and puts them together from the top. Each node is read beside where its parent is by then,
// not where it should be, so that no node inherits what is lost of another: rounding, what still
// counts as standing still, and the shear of whatever stands above it.
class LocalMotion {
  public:
    // The take outlives it. More bytes of keys than `mostBytes` are not kept.
    LocalMotion(const Take& take, std::size_t mostBytes);

    // Takes in the next frame. False if there would be too many keys.
    bool Add(std::span<const TVL::CMatrix4> world);

    std::vector<NodeMotion> nodes;
    std::size_t keyBytes = 0;  // when all frames are in

    // What is left out; to be asked when all frames are in.
    Loss TellLoss() const;

  private:
    using Value = std::array<float, 4>;

    struct Pose {
        Value translation{};
        Value rotation{0, 0, 0, 1};
        Value scale{1, 1, 1};
    };

    void AddNode(std::size_t node, const TVL::CMatrix4& world);
    Pose PoseOf(const TVL::CMatrix4& local, const Pose& last) const;
    Value Keep(Channel& channel, const Value& value, double still);
    void Begin(Channel& channel);

    const Take& take_;
    std::size_t bytesLeft_;
    bool isTooLong_ = false;
    std::size_t frame_ = 0;
    std::vector<Pose> last_;                // as the file has it
    std::vector<TVL::CMatrix4> world_;      // what comes of that
    std::vector<TVL::CMatrix4> fromWorld_;  // and back
    FlawNotes flaws_;
    Loss loss_;
};

}  // namespace interchange
