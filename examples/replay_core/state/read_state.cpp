#include "replay_core/state/read_state.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

#include "replay_core/motion/numbers.h"
#include "replay_core/state/stored_form.h"
#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"

namespace replay {
namespace {

bool IsElement(const XMLNode& node, const char* name) {
    return node.kind == XMLNode::kElement && node.name == name;
}

// No capture that was ever in memory has more.
constexpr std::size_t kMostFrames = 1'000'000'000'000;

std::optional<Recording> ReadRecording(const XMLNode& element) {
    const std::optional<double> metres = ParseNumber(StoredText(element, form::kMetresPerUnit));
    const std::optional<double> seconds = ParseNumber(StoredText(element, form::kFrameSeconds));
    const std::optional<std::size_t> first = ParseCount(StoredText(element, form::kFirstFrame));
    const std::optional<std::size_t> end = ParseCount(StoredText(element, form::kEndFrame));
    if (!metres || !seconds || !first || !end) return std::nullopt;
    if (!(*seconds > 0) || *first >= *end || *end > kMostFrames) return std::nullopt;
    const std::optional<double> start = ParseNumber(StoredText(element, form::kStartSeconds));
    return Recording{.capture = StoredText(element, form::kCapture),
                     .metresPerUnit = *metres,
                     .frameSeconds = *seconds,
                     .firstFrame = *first,
                     .endFrame = *end,
                     .startSeconds = start.value_or(0)};
}

bool IsPacked(const XMLNode& plugin) {
    const auto mark = plugin.attributes.find(form::kCompressed);
    return mark != plugin.attributes.end() && mark->second == form::kPacked &&
           plugin.children.size() == 1 && plugin.children[0]->kind == XMLNode::kText;
}

// Without name and children if it cannot be read.
XMLNode Unpacked(const XMLNode& plugin) {
    const std::vector<std::uint8_t> stream = Base64Buffer(plugin.Text()).Bytes();
    const HuffmanBuffer packed(stream.data(), static_cast<std::int32_t>(stream.size()));
    return XMLNode(packed.Text());
}

class StateReader {
  public:
    // Without recursion: how deep the plug-ins stand is the file's to say.
    void ReadFrom(const XMLNode& topmost) {
        struct Open {
            const XMLNode* element;
            std::size_t parent;
            bool mayBePacked;
        };
        std::vector<Open> open = {{&topmost, StoredPlugin::kNone, true}};
        while (!open.empty()) {
            const auto [stored, parent, mayBePacked] = open.back();
            open.pop_back();
            const XMLNode* const element =
                IsPacked(*stored) ? Unpack(*stored, mayBePacked) : stored;
            if (!element) continue;
            const std::size_t index = state_.plugins.size();
            state_.plugins.push_back(ReadPlugin(*element, parent));
            const auto& children = element->children;
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                if (IsElement(**child, form::kPlugin))
                    open.push_back({child->get(), index, mayBePacked && element == stored});
        }
    }

    void Fault(std::string fault) { state_.faults.push_back(std::move(fault)); }

    StoredState& Result() { return state_; }

  private:
    // Null if there is no plug-in to be had. What was packed holds nothing packed, or a small file
    // could unfold without end.
    const XMLNode* Unpack(const XMLNode& plugin, bool mayBePacked) {
        if (mayBePacked) {
            const XMLNode& unpacked = unpacked_.emplace_back(Unpacked(plugin));
            if (IsElement(unpacked, form::kPlugin) && !IsPacked(unpacked)) return &unpacked;
        }
        Fault("a packed plug-in cannot be read");
        return nullptr;
    }

    StoredPlugin ReadPlugin(const XMLNode& element, std::size_t parent) {
        StoredPlugin plugin;
        plugin.parent = parent;
        plugin.name = element.Child(form::kName).Text();
        plugin.type = element.Child(form::kType).Text();
        for (const auto& child : element.children) {
            if (IsElement(*child, form::kRecordings))
                ReadRecordings(*child, plugin);
            else if (IsElement(*child, form::kNodeInfo))
                ReadNodes(*child, plugin);
            else if (child->kind == XMLNode::kElement && child->name != form::kName &&
                     child->name != form::kType && child->name != form::kPlugin)
                plugin.unknown.push_back(*child);
        }
        return plugin;
    }

    void ReadRecordings(const XMLNode& recordings, StoredPlugin& plugin) {
        for (const auto& child : recordings.children) {
            if (std::optional<Recording> recording = ReadRecording(*child))
                plugin.recordings.push_back(std::move(*recording));
            else
                Fault("a recording of \"" + plugin.name + "\" cannot be read");
        }
    }

    void ReadNodes(const XMLNode& nodes, StoredPlugin& plugin) {
        for (const auto& child : nodes.children) {
            if (IsElement(*child, form::kNode))
                plugin.nodes.push_back({StoredText(*child, form::kName), *child});
            else
                Fault("the nodes of \"" + plugin.name + "\" hold what is no node");
        }
    }

    StoredState state_;
    std::deque<XMLNode> unpacked_;  // stay where they are
};

}  // namespace

StoredState ReadState(const XMLNode& state) {
    StateReader reader;
    if (state.name == form::kPlugin) {
        reader.ReadFrom(state);
    } else if (state.name == form::kRoot) {
        for (const auto& child : state.children) {
            if (IsElement(*child, form::kPlugin))
                reader.ReadFrom(*child);
            else
                reader.Fault("\"" + child->name + "\" is no plug-in");
        }
    } else if (!state.name.empty() || !state.children.empty()) {
        reader.Fault("\"" + state.name + "\" is not this Core's state");
    }
    return std::move(reader.Result());
}

}  // namespace replay
