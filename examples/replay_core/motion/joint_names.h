#pragma once

#include <string>
#include <vector>

#include "replay_core/motion/motion.h"

namespace replay {

// A name for each joint that no other joint has. The first joint of a name keeps it; further ones
// are numbered from 2, as in "Hand", "Hand_2", past every name that the capture has itself.
std::vector<std::string> UniqueJointNames(const Motion& motion);

}  // namespace replay
