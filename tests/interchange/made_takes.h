#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>

#include "interchange/take.h"

// Takes of plain data.

using World = std::span<TVL::CMatrix4>;

// Poses by a rule, in single precision as the host gives them.
class MadePoses final : public interchange::Poses {
  public:
    using Make = std::function<void(double seconds, World world)>;
    explicit MadePoses(Make make) : make_(std::move(make)) {}
    void At(double seconds, World world) override {
        make_(seconds, world);
        for (TVL::CMatrix4& matrix : world)
            for (auto& row : matrix.rows)
                for (double& number : row)
                    number = static_cast<float>(number);
    }

  private:
    Make make_;
};

inline TVL::CMatrix4 At(double x, double y, double z,
                        TVL::CMatrix4 matrix = TVL::CMatrix4::Identity()) {
    matrix[3][0] = x;
    matrix[3][1] = y;
    matrix[3][2] = z;
    return matrix;
}

// Joints, each below the one before it.
inline interchange::Take Chain(std::size_t joints, std::size_t frames, double frameSeconds) {
    interchange::Take take{
        .name = "chain", .frameSeconds = frameSeconds, .frameCount = frames, .nodes{}};
    for (std::size_t i = 0; i < joints; ++i)
        take.nodes.push_back({.name = "joint" + std::to_string(i),
                              .parent = i - 1,  // none of the first
                              .kind = interchange::NodeKind::kJoint});
    return take;
}
