#include "replay_core/state/panel_options.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "replay_core/motion/numbers.h"

namespace replay {
namespace {

std::optional<PanelOption> ReadOption(const XMLNode& element) {
    const bool isButton = element.name == "button";
    if (!isButton && element.name != "check") return std::nullopt;
    const std::optional<std::size_t> id = ParseCount(element.Child("id").Text());
    if (!id || *id > static_cast<std::size_t>(std::numeric_limits<int>::max())) return std::nullopt;
    return PanelOption{.id = static_cast<int>(*id),
                       .name = element.Child("name").Text(),
                       .isButton = isButton,
                       .value = element.Child("value").Text() == "true"};
}

}  // namespace

PanelOptions::PanelOptions(const XMLNode& panel) {
    std::vector<const XMLNode*> open = {&panel};
    while (!open.empty()) {
        const XMLNode& element = *open.back();
        open.pop_back();
        if (std::optional<PanelOption> option = ReadOption(element))
            options_.push_back(std::move(*option));
        for (auto child = element.children.rbegin(); child != element.children.rend(); ++child)
            open.push_back(child->get());
    }
}

const PanelOption* PanelOptions::Find(int id) const {
    const auto found = std::ranges::find(options_, id, &PanelOption::id);
    return found == options_.end() ? nullptr : &*found;
}

void PanelOptions::Set(int id, bool value) {
    const auto found = std::ranges::find(options_, id, &PanelOption::id);
    if (found != options_.end()) found->value = value;
}

}  // namespace replay
