#pragma once

#include <string>

#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"
#include "tvl/node.h"

namespace replay {

// Puts a guide object of the take's, under that name, where a shape of the scene stands: a ribbon
// of arrows along each of its curves, about one every quarter of a metre, that point the way of the
// curve. It comes to stand as the shape does at the host's present time. A guide that is there
// stays as it is. The result is empty, or says in one line why there is none.
std::string MakeGuide(TVL::AdaptorInterface& adaptor, Take& take, const std::string& name,
                      TVL::CoreNode& shape, double hostUnitsPerMetre);

}  // namespace replay
