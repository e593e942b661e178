#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "replay/recording.h"
#include "tvl/xml_node.h"

namespace replay {

struct StoredNode {
    std::string name;
    XMLNode element;  // the `node` that says so, with what else it says
};

// A plug-in as a scene file tells of it, see stored_state.h.
struct StoredPlugin {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t parent = kNone;  // index of an earlier one, or kNone at the top
    std::string name;
    std::string type;
    std::vector<Recording> recordings;
    std::vector<StoredNode> nodes;
    std::vector<XMLNode> unknown;  // its other children
};

struct StoredState {
    std::vector<StoredPlugin> plugins;  // in the order of the text, parents before their children
    std::vector<std::string> faults;    // what could not be made sense of, a line each
};

// Reads a "TVL" with plug-ins in it, or one plug-in, packed or not. Nothing that can stand there is
// refused as a whole: what makes no sense is left out and told.
StoredState ReadState(const XMLNode& state);

}  // namespace replay
