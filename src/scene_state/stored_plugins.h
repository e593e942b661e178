#pragma once

#include <memory>
#include <vector>

#include "tvl/xml_node.h"

// The elements "masternode" of the tags of a scene, in the order of the scene.
using StoredPlugins = std::vector<std::unique_ptr<XMLNode>>;

// The element "TVL" that the Core loads: plug-ins unpacked, those of a name that came before left
// out, and each placed in the plug-in that it names as its parent, by ascending child index. A
// plug-in whose parent is not there stays at the top, and so does the first of each circle of
// parents.
XMLNode StateTree(StoredPlugins masters);
