#pragma once

#include <functional>
#include <map>
#include <string>

#include "tests/support/world.h"
#include "tvl/core_interface.h"

namespace play {

// A plug-in of the Core's that owns nodes and listens to them, and does what a tidy one does: it
// stores and finds its nodes again, and lets all of them go when the user deletes any.
class Rig final : public TVL::CoreElement, public TVL::NodeListener {
  public:
    Rig(std::string name, World& world);
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;

    std::vector<int> ListExtensions() override { return {43, 56}; }
    std::intptr_t HandleExtension(int id, void* argument) override;
    void OnNodeRemoved(TVL::CNode* node) override { Hear(node, false); }
    void OnNodeRestored(TVL::CNode* node) override { Hear(node, true); }

    const std::string& Name() const { return record_.name; }

    // Its nodes in the adaptor's list.
    std::vector<TVL::CoreNode*> Nodes();

    // Makes the nodes of a stored state of this plug-in its own again.
    // `nameFor` gives the name that one gets for the name that was stored.
    using NameFor = std::function<std::string(const std::string& stored)>;
    void Load(const XMLNode& pluginState, const NameFor& nameFor);

    // Ends a node, of which a group's record tells later and nobody otherwise.
    void Delete(TVL::CoreNode* node, bool withHostNode);

    // Ends its nodes without a word, as when the scene goes.
    void Drop();

    // What is heard of a node from here on is heard afresh.
    void Forget(TVL::CNode* node) { heard.erase(node); }

    std::map<TVL::CNode*, bool> heard;  // the last word on a node: restored, or removed

    std::function<void(TVL::CNode& node)> onRestored;

    // Inside each call: at its beginning, and when its work is done.
    std::function<void(const char* moment)> onCall;
    std::function<void(const char* moment)> onMoment;

  private:
    void Hear(TVL::CNode* node, bool restored);
    void Store(XMLNode& masters);
    void LetGo();

    TVL::PluginRecord record_;
    World& world_;
};

}  // namespace play
