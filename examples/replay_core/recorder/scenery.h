#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "replay_core/state/claim_nodes.h"
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

}  // namespace replay
