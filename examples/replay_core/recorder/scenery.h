#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/progress_line.h"
#include "replay/recording.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/meant_poses.h"
#include "replay_core/state/claim_nodes.h"
#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"
#include "tvl/node.h"

namespace replay {

// The nodes of the scene, none of them this Core's, that a recording heeds: a ground for feet to
// stand on and a shape for a guide object to go along, each if the host's handle of one is given.
// They are on lend for as long as this lives.
class Scenery {
  public:
    Scenery(TVL::AdaptorInterface& adaptor, std::optional<std::uint32_t> ground,
            std::optional<std::uint32_t> guide);

    // Empty, or why one of the handles leads to nothing of use.
    const std::string& Error() const { return error_; }

    TVL::CoreNode* Ground() const { return ground_[0]; }  // null if none was asked for
    TVL::CoreNode* Guide() const { return guide_[0]; }

  private:
    FoundNodes ground_;
    FoundNodes guide_;
    std::string error_;
};

// The least lift for each frame that brings every foot, and the tip of every foot, onto the ground:
// none where all are on or above it. What counts as ground is the first surface below the highest
// joint of the pose, so that a figure steps onto what it would stand in; where there is none, such
// as beyond the edge, the figure stays as it is.
// To be called inside the recording, so that the adaptor has the host convert the ground once for
// all frames, unless the option of dynamic meshes wants it as it is in each.
Lifts LiftsOnto(TVL::CoreNode& ground, const Motion& motion, const Recording& recording,
                platform::ProgressLine& progress);

// Puts a guide object of the take's, under that name, where a shape of the scene stands: a ribbon
// of arrows along each of its curves, about one every quarter of a metre, that point the way of the
// curve. It comes to stand as the shape does at the host's present time. A guide that is there
// stays as it is. The result is empty, or says in one line why there is none.
std::string MakeGuide(TVL::AdaptorInterface& adaptor, Take& take, const std::string& name,
                      TVL::CoreNode& shape, double hostUnitsPerMetre);

}  // namespace replay
