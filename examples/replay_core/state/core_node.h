#pragma once

#include "tvl/node.h"

namespace replay {

// Every node that an adaptor gives out is one; null stays null.
inline TVL::CoreNode* AsCoreNode(TVL::CNode* node) {
    return static_cast<TVL::CoreNode*>(node);
}

}  // namespace replay
