#pragma once

#include <string>
#include <vector>

#include "replay_core/motion/motion.h"
#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"
#include "tvl/node.h"

namespace replay {

// The nodes of a take, the adaptor's, in the order of the capture's joints.
struct TakeNodes {
    std::vector<TVL::CoreNode*> joints;
    TVL::CoreNode* camera = nullptr;
    bool isCameraNew = false;
    double hostUnitsPerMetre = 1;
    std::string error;  // one line if the host made no node for something
};

// Finds the nodes of the take by their names, and makes those that are not in the scene: a helper
// for each joint, under its parent, with its bones for a shape (see helper_look.h), and a free
// camera. Inside an undo group the take's book hears of them.
TakeNodes FindOrMakeNodes(TVL::AdaptorInterface& adaptor, const Motion& motion,
                          double metresPerUnit, Take& take);

// The names of a take's nodes that are no joints; no joint bears them.
std::string CameraName(const Motion& motion);
std::string GuideName(const Motion& motion);

}  // namespace replay
