#include "scene_state/stored_plugins.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "scene_state/state_format.h"
#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"
#include "xml/xml_text.h"

namespace {

constexpr const char* kCompressedAttribute = "compressed";

const XMLNode& PluginOf(const XMLNode& master) {
    return master.Child(kPluginElement);
}

const std::string& NameOf(const XMLNode& plugin) {
    return plugin.Child(kNameElement).Text();
}

bool IsPacked(const XMLNode& plugin) {
    const auto compressed = plugin.attributes.find(kCompressedAttribute);
    return compressed != plugin.attributes.end() && compressed->second == "1" &&
           plugin.children.size() == 1 && plugin.children.front()->kind == XMLNode::kText;
}

// False if nothing could be unpacked.
bool Unpack(XMLNode& master) {
    const XMLNode& plugin = PluginOf(master);
    if (!IsPacked(plugin)) return true;
    const Base64Buffer packed(plugin.children.front()->name);
    const std::vector<std::uint8_t>& stream = packed.Bytes();
    if (stream.empty()) return false;
    master.RemoveChild(plugin);
    const HuffmanBuffer unpacked(stream.data(), static_cast<std::int32_t>(stream.size()));
    master.AddChild(std::make_unique<XMLNode>(unpacked.Text()));
    return true;
}

// The first of each name stays.
void DropDuplicates(StoredPlugins& masters) {
    std::unordered_set<std::string_view> names;
    std::erase_if(masters, [&](const auto& master) {
        return !names.insert(NameOf(PluginOf(*master))).second;
    });
}

// The number at the start of the text, within 32 bits; 0 if there is none.
std::int32_t NumberIn(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kXMLSpace), text.size()));
    const bool isNegative = text.starts_with('-');
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    std::int32_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc::result_out_of_range) return number;
    return isNegative ? std::numeric_limits<std::int32_t>::min()
                      : std::numeric_limits<std::int32_t>::max();
}

// Who hangs below whom, as far as is known: each plug-in with the one above it, the top with
// itself. Ways are halved as they are gone.
class Tops {
  public:
    explicit Tops(std::size_t count) : above_(count) { std::iota(above_.begin(), above_.end(), 0); }

    void Hang(std::size_t child, std::size_t parent) { above_[child] = parent; }

    std::size_t TopOf(std::size_t plugin) {
        while (above_[plugin] != plugin) {
            above_[plugin] = above_[above_[plugin]];
            plugin = above_[plugin];
        }
        return plugin;
    }

  private:
    std::vector<std::size_t> above_;
};

struct Step {
    const StateBuilder* builder;
    XMLNode* target;  // a copy of the builder's element
};

std::vector<const StateBuilder*> InOrder(const std::vector<StateBuilder*>& children) {
    std::vector<const StateBuilder*> ordered(children.rbegin(), children.rend());
    std::ranges::stable_sort(ordered, {}, &StateBuilder::childIndex);
    return ordered;
}

using StateBuilders = std::vector<std::unique_ptr<StateBuilder>>;

// They take the plug-ins out of their elements.
StateBuilders MakeBuilders(StoredPlugins& masters) {
    StateBuilders builders;
    for (auto& master : masters) {
        builders.push_back(std::make_unique<StateBuilder>());
        XMLNode& plugin = master->Child(kPluginElement);
        if (plugin.name == kPluginElement) builders.back()->element.Swap(plugin);
    }
    return builders;
}

// From last to first; a link that would close a circle is not made, so that its plug-ins are not
// lost.
void Link(const StateBuilders& builders, const StoredPlugins& masters) {
    std::unordered_map<std::string_view, std::size_t> byName;
    for (std::size_t index = 0; index < masters.size(); ++index)
        byName.emplace(NameOf(builders[index]->element), index);

    Tops tops(masters.size());
    for (std::size_t index = masters.size(); index-- > 0;) {
        const XMLNode& master = *masters[index];
        const std::string& parentName = master.Child(kParentElement).Text();
        const auto parent = byName.find(parentName);
        if (parentName.empty() || parent == byName.end()) continue;
        if (tops.TopOf(parent->second) == index) continue;
        tops.Hang(index, parent->second);
        builders[parent->second]->Attach(*builders[index]);
        builders[index]->childIndex = NumberIn(master.Child(kChildIndexElement).Text());
    }
}

}  // namespace

// Plug-ins can be nested deep, so nothing recurses.
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

XMLNode StateTree(StoredPlugins masters) {
    std::erase_if(masters, [](const auto& master) { return !Unpack(*master); });
    DropDuplicates(masters);
    const StateBuilders builders = MakeBuilders(masters);
    Link(builders, masters);

    XMLNode state = Element(kStateElement);
    for (const auto& builder : builders) {
        if (builder->parent) continue;
        // Built in its place: a tree moves by being copied.
        state.AddChild(std::unique_ptr<XMLNode>(new XMLNode(builder->Build())));
    }
    return state;
}
