#include "scene_state/node_tags.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/fuzzed_world.h"
#include "tvl/node.h"

namespace {

void AddNode(std::string_view tag) {
    INode* const node = GetCOREInterface()->CreateObjectNode(CreateNewTriObject());
    node->SetName("Node");
    node->SetUserPropString("TVL_tag", std::string(tag));
}

// As a Core does while it loads: each plug-in takes its nodes, here to give them back at once.
void ClaimFor(TVL::AdaptorInterface& adaptor, const XMLNode& state) {
    for (const auto& plugin : state.children) {
        const std::string name = plugin->Child("name").Text();
        for (TVL::CNode* node : adaptor.ClaimNodes(name, plugin->Child("nodeinfo")))
            if (node) static_cast<TVL::CoreNode*>(node)->Destroy();
    }
}

FuzzedWorld& ClaimingWorld() {
    FuzzedWorld& world = FuzzedWorld::Get();
    world.Core().onCall = [&world](const std::string& call) {
        constexpr std::string_view kMark = "set state ";
        if (!call.starts_with(kMark)) return;
        ClaimFor(world.Adaptor(), XMLNode(std::string_view(call).substr(kMark.size())));
    };
    return world;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedWorld& world = ClaimingWorld();
    std::string_view tags = AsText(data, size);
    while (!tags.empty()) {
        const std::string_view tag = tags.substr(0, tags.find('\0'));
        AddNode(tag);
        tags.remove_prefix(std::min(tag.size() + 1, tags.size()));
    }
    GatherSceneState();
    world.Clear();
    return 0;
}
