#include "replay_core/state/read_state.h"

#include <optional>
#include <utility>

#include "replay_core/motion/numbers.h"
#include "replay_core/state/stored_form.h"
#include "replay_core/state/stored_text.h"

namespace replay {
namespace {

bool IsElement(const XMLNode& node, const char* name) {
    return node.kind == XMLNode::kElement && node.name == name;
}

std::optional<Recording> ReadRecording(const XMLNode& element) {
    const std::optional<double> metres = ParseNumber(StoredText(element, form::kMetresPerUnit));
    const std::optional<double> seconds = ParseNumber(StoredText(element, form::kFrameSeconds));
    const std::optional<std::size_t> first = ParseCount(StoredText(element, form::kFirstFrame));
    const std::optional<std::size_t> end = ParseCount(StoredText(element, form::kEndFrame));
    if (!metres || !seconds || !first || !end) return std::nullopt;
    return Recording{.capture = StoredText(element, form::kCapture),
                     .metresPerUnit = *metres,
                     .frameSeconds = *seconds,
                     .firstFrame = *first,
                     .endFrame = *end};
}

class Reader {
  public:
    // Without recursion: how deep the plug-ins stand is the file's to say.
    void ReadFrom(const XMLNode& topmost) {
        struct Open {
            const XMLNode* element;
            std::size_t parent;
        };
        std::vector<Open> open = {{&topmost, StoredPlugin::kNone}};
        while (!open.empty()) {
            const auto [element, parent] = open.back();
            open.pop_back();
            const std::size_t index = state_.plugins.size();
            state_.plugins.push_back(ReadPlugin(*element, parent));
            const auto& children = element->children;
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                if (IsElement(**child, form::kPlugin)) open.push_back({child->get(), index});
        }
    }

    void Fault(std::string fault) { state_.faults.push_back(std::move(fault)); }

    StoredState& Result() { return state_; }

  private:
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
};

}  // namespace

StoredState ReadState(const XMLNode& state) {
    Reader reader;
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
