#pragma once

#include "tvl/adaptor_interface.h"
#include "tvl/message.h"

namespace puppet {

// Places a log and an error registry, opens undo groups with a chunk in them and a recording, takes
// the keyboard, and makes a node, a snapshot node and snapshots of both that stay out. Nothing of
// it is taken back. Gives a message node that has the listener listened to, once there is one.
TVL::Util::MessageNode* Litter(TVL::AdaptorInterface& adaptor);

}  // namespace puppet
