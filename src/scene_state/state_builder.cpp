#include "scene_state/state_builder.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

struct Step {
    const StateBuilder* builder;
    XMLNode* target;  // a copy of the builder's element
};

std::vector<const StateBuilder*> InOrder(const std::vector<StateBuilder*>& children) {
    std::vector<const StateBuilder*> ordered(children.rbegin(), children.rend());
    std::ranges::stable_sort(ordered, {}, &StateBuilder::childIndex);
    return ordered;
}

}  // namespace

// Plug-ins can be nested deep, so nothing recurses. One without an element leaves its place to what
// is below it.
XMLNode StateBuilder::Build() const {
    XMLNode built = element;
    std::vector<Step> pending = {{this, &built}};
    while (!pending.empty()) {
        const Step step = pending.back();
        pending.pop_back();
        for (const StateBuilder* child : InOrder(step.builder->children)) {
            XMLNode& target = step.target->AddChild(std::make_unique<XMLNode>(child->element));
            pending.push_back({child, &target});
        }
    }
    return built;
}
