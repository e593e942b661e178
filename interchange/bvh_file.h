#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "interchange/take.h"

namespace interchange {

// What is told while a file is written: that another frame is done. False: it is to be given up.
using FrameDone = std::function<bool()>;

struct BvhChoice {
    double metresPerUnit = 1;   // of the file
    std::string order = "ZXY";  // of the three turns of a joint, the first one outermost
};

// Writes joints and motion in the BVH text format (described by M. Meredith and S. Maddock, "Motion
// Capture File Formats Explained", University of Sheffield, 2001): each root with six channels, a
// joint with three, or with six if its place beside its parent changes. Turns are in degrees. The
// stream's own state tells whether it could be written. Without a joint nothing is written.
Loss WriteBvh(const Take& take, Poses& poses, const BvhChoice& choice, std::ostream& out,
              const FrameDone& done);

}  // namespace interchange
