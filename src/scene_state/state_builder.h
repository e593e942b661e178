#pragma once

#include <cstdint>

#include "tvl/composite_dynamic.h"
#include "tvl/xml_node.h"

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
