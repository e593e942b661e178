#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/take.h"

namespace interchange {

// What is told while a file is written: that another frame is done. False: it is to be given up.
using FrameDone = std::function<bool()>;

inline constexpr std::array<std::string_view, 6> kTurnOrders = {"XYZ", "XZY", "YXZ",
                                                                "YZX", "ZXY", "ZYX"};

struct BvhChoice {
    double metresPerUnit = 1;   // of the file
    std::string order = "ZXY";  // of the three turns of a joint, the first one outermost
};

// The nodes of a take that the format has room for: those that move, and what hangs below them, but
// no cameras.
std::vector<std::size_t> JointsOf(const Take& take);

// How often WriteBvh goes through the frames: it has to know of a joint whether it keeps its place
// beside its parent before it writes the first one.
inline constexpr std::size_t kBvhPasses = 2;

// Writes joints and motion in the BVH text format (described by M. Meredith and S. Maddock, "Motion
// Capture File Formats Explained", University of Sheffield, 2001): each root with six channels, a
// joint with three, or with six if its place beside its parent changes, which then stand in the
// place of its offset. Turns are in degrees, and numbers as long as the joints' places need them.
// The stream's own state tells whether it could be written. Without a joint nothing is written.
Loss WriteBvh(const Take& take, Poses& poses, const BvhChoice& choice, std::ostream& out,
              const FrameDone& done);

}  // namespace interchange
