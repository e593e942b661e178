#include "replay_core/state/stored_state.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "replay_core/motion/numbers.h"
#include "replay_core/state/compress.h"
#include "replay_core/state/stored_form.h"

namespace replay {
namespace {

XMLNode RecordingElement(const Recording& recording) {
    XMLNode element(form::kRecording, "");
    SetStoredText(element, form::kCapture, recording.capture);
    element.attributes[form::kMetresPerUnit] = NumberText(recording.metresPerUnit);
    element.attributes[form::kFrameSeconds] = NumberText(recording.frameSeconds);
    element.attributes[form::kFirstFrame] = std::to_string(recording.firstFrame);
    element.attributes[form::kEndFrame] = std::to_string(recording.endFrame);
    if (recording.startSeconds != 0)
        element.attributes[form::kStartSeconds] = NumberText(recording.startSeconds);
    return element;
}

XMLNode NodeInfo(const Take& take) {
    XMLNode info(form::kNodeInfo, "");
    for (const TVL::CNode* node : take.Book().Nodes()) {
        XMLNode element(form::kNode, "");
        SetStoredText(element, form::kName, node->GetNodeName());
        info.AddChild(element);
    }
    for (const StoredNode& missing : take.Missing())
        info.AddChild(missing.element);
    return info;
}

XMLNode Plugin(const Take& take) {
    XMLNode plugin(form::kPlugin, "");
    plugin.attributes[form::kVersion] = form::kPresentVersion;
    plugin.AddChild(XMLNode(form::kType, take.Rest().type));
    plugin.AddChild(XMLNode(form::kName, take.Name()));
    XMLNode& recordings = plugin.AddChild(XMLNode(form::kRecordings, ""));
    for (const Recording& recording : take.Recordings())
        recordings.AddChild(RecordingElement(recording));
    plugin.AddChild(NodeInfo(take));
    for (const XMLNode& unknown : take.Rest().unknown)
        plugin.AddChild(unknown);
    return plugin;
}

// A plug-in that is too long to be packed stays as it is.
std::unique_ptr<XMLNode> PackedIfLong(std::unique_ptr<XMLNode> plugin) {
    const std::string plain = plugin->Write();
    if (plain.size() <= kLongestPlainText) return plugin;
    const std::optional<std::string> packed = PackedText(plain);
    if (!packed) return plugin;
    *plugin = XMLNode(form::kPlugin, *packed);
    plugin->attributes[form::kVersion] = form::kPresentVersion;
    plugin->attributes[form::kCompressed] = form::kPacked;
    return plugin;
}

}  // namespace

XMLNode WholeState(const Takes& takes) {
    std::map<const Take*, std::unique_ptr<XMLNode>> plugins;
    std::map<const Take*, XMLNode*> places;
    for (const std::unique_ptr<Take>& take : takes.All()) {
        if (!take->IsThere()) continue;
        auto& plugin = plugins[take.get()] = std::make_unique<XMLNode>(Plugin(*take));
        places[take.get()] = plugin.get();
    }
    // Plug-ins move, they are not copied, so that a deep nest costs no more than a flat one. What
    // stands at the top is packed when all that belongs in it is there.
    std::vector<std::unique_ptr<XMLNode>> top;
    for (const std::unique_ptr<Take>& take : takes.All()) {
        if (!take->IsThere()) continue;
        const Take* const parent = StoredParent(*take);
        auto& siblings = parent ? places[parent]->children : top;
        siblings.push_back(std::move(plugins[take.get()]));
    }
    XMLNode state(form::kRoot, "");
    for (std::unique_ptr<XMLNode>& plugin : top)
        state.children.push_back(PackedIfLong(std::move(plugin)));
    return state;
}

XMLNode MasterNode(const Take& take, const Takes& all) {
    XMLNode master(form::kMasterNode, "");
    master.children.push_back(PackedIfLong(std::make_unique<XMLNode>(Plugin(take))));
    const Take* const parent = StoredParent(take);
    if (!parent) return master;
    std::uint32_t index = 0;
    for (const std::unique_ptr<Take>& other : all.All()) {
        if (other.get() == &take) break;
        if (other->IsThere() && StoredParent(*other) == parent) ++index;
    }
    master.AddChild(XMLNode(form::kParent, parent->Name()));
    master.AddChild(XMLNode(form::kChildIndex, index));
    return master;
}

}  // namespace replay
