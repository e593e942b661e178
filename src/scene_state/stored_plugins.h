#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tvl/composite_dynamic.h"
#include "tvl/xml_node.h"

// The elements "masternode" of the tags of a scene, in the order of the scene.
using StoredPlugins = std::vector<std::unique_ptr<XMLNode>>;

// The element "TVL" that the Core loads: plug-ins unpacked, those of a name that came before left
// out, and each placed in the plug-in that it names as its parent, by ascending child index. A
// plug-in whose parent is not there stays at the top, and so does the first of each circle of
// parents.
XMLNode StateTree(StoredPlugins masters);

// A stored plug-in while the tree of all is put together: they are stored one by one, and the Core
// gets them nested.
class StateBuilder final : public TVL::Util::Composite_Dynamic<StateBuilder> {
  public:
    void OnParentDestroyed() override {}
    void OnAttached() override {}
    void OnDetached() override {}

    // The element, and behind its own children those below it by ascending index; of equal index
    // the one that was attached last comes first.
    XMLNode Build() const;

    std::int32_t childIndex = 0;
    XMLNode element;
};
