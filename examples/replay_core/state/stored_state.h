#pragma once

#include "replay_core/state/take.h"
#include "replay_core/state/takes.h"
#include "tvl/xml_node.h"

namespace replay {

// What this Core stores in scene files. Each take is a plug-in:
//
//     TVL_Plugin  version="1"
//       type, name          texts
//       recordings          a `recording` for each: capture, metresPerUnit, frameSeconds,
//                           firstFrame, endFrame, and startSeconds unless that is 0
//       nodeinfo            a `node` for each, the name in `name`; those that were not found when
//                           the scene was opened stand last, as they were read
//       ...                 what a scene file had beyond that
//
// Paths and names of nodes stand as stored_form.h says. A plug-in whose text is longer than
// kLongestPlainText is packed (attribute `compressed`). The state is stored twice: the whole of it,
// plug-ins within plug-ins, with the scene, and each plug-in alone with the nodes of its take, so
// that it comes along when the scene is merged into another.
inline constexpr std::size_t kLongestPlainText = 1024;  // bytes

// Without children if no take is there.
XMLNode WholeState(const Takes& takes);

// A `masternode`: the plug-in, and where it belongs among those of `all`.
XMLNode MasterNode(const Take& take, const Takes& all);

}  // namespace replay
