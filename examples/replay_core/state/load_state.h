#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "replay_core/state/takes.h"
#include "tvl/adaptor_interface.h"
#include "tvl/xml_node.h"

namespace replay {

// What came of one call with stored state. A take that was there and got no node has nothing new to
// tell and is not listed.
struct LoadedTake {
    std::string name;
    std::string storedName;  // another one if the name was taken
    bool isNew = false;
    std::size_t nodesClaimed = 0;
    std::vector<std::string> nodesNotFound;
};

struct LoadedState {
    std::vector<LoadedTake> takes;
    std::vector<std::string> faults;  // what could not be made sense of, a line each
};

// Takes up stored state, the whole of a scene or what was gathered from nodes. State comes up to
// three times for one file, by two roads, and after a merge by one only:
//
//     file with state and tags     whole state, an empty "TVL", tags
//     file without our tags        whole state, an empty "TVL", an empty "TVL"
//     merge, or a late attach      tags
//
// So either road makes takes, and neither relies on the other. A stored plug-in is a take that is
// there already if that bears its name and has one of the nodes that the plug-in finds, or none of
// its own, or the plug-in finds none. Then it gets only the nodes that it does not have yet. Any
// other plug-in was merged in and becomes a take of its own, with a new name if its name is taken.
// Parents are followed through the nesting, not by name, and so follow the new names.
//
// Nodes are sought by their tags first; for one that is found by its number alone, the host's name
// must agree and nobody may have it, since a merge hands out new numbers and a stranger can bear
// the old one. A node that is not found stays with the take as missing and is stored with it.
//
// Memory that runs out is thrown. The same state, taken up again, then brings what is still
// missing.
LoadedState LoadState(TVL::AdaptorInterface& adaptor, Takes& takes, const XMLNode& state);

// A scope of the trace with all of that; nothing if there is nothing.
void WriteToTrace(const LoadedState& loaded);

}  // namespace replay
