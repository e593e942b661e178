#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "adaptor/utility_manager.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "scene_state/node_tags.h"
#include "tests/support/plugin.h"
#include "tests/support/world.h"

using Texts = std::vector<std::string>;

// A scene with tags in it, and a Core that loads.
class StateTest : public testing::Test {
  protected:
    Plugin rig{"Rig"};
    Plugin other{"Other"};
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    static std::string Holding(const char* element, const std::string& text) {
        return XMLNode(element, text).Write();
    }

    static std::string Tag(const std::string& plugin, const std::string& object,
                           const std::string& masters = {}) {
        return "<TVL_tag>" + Holding("name", plugin) + Holding("objectname", object) + masters +
               "</TVL_tag>";
    }

    static std::string Master(const std::string& name, const std::string& parent = {},
                              const std::string& index = {}) {
        return "<masternode><TVL_Plugin>" + Holding("name", name) + "</TVL_Plugin>" +
               Holding("parent", parent) + Holding("childindex", index) + "</masternode>";
    }

    TVL::CoreNode* Helper(Plugin& owner, const std::string& name) {
        TVL::CNode* const node = adaptor.CreateHelperNode(&owner, name, nullptr, {}, nullptr);
        return static_cast<TVL::CoreNode*>(node);
    }

    // A node of the host's that no Core knows, with a tag on it.
    static INode* SceneNode(const std::string& name, const std::string& tag) {
        Interface& host = *GetCOREInterface();
        void* const object = host.CreateInstance(GEOMOBJECT_CLASS_ID, kTriObjectClassId);
        INode* const node = host.CreateObjectNode(static_cast<Object*>(object));
        node->SetName(name.c_str());
        if (!tag.empty()) node->SetUserPropString("TVL_tag", tag);
        return node;
    }

    static std::string TagOf(INode* node) {
        HostString text = "no tag";
        node->GetUserPropString("TVL_tag", text);
        return text;
    }

    // Host names of the nodes, "-" for null; the nodes are released.
    static Texts Released(const std::vector<TVL::CNode*>& nodes) {
        Texts names;
        for (TVL::CNode* node : nodes) {
            auto* const core = static_cast<TVL::CoreNode*>(node);
            names.push_back(core ? core->GetName() : "-");
            if (core) core->Destroy();
        }
        return names;
    }

    // With an owner the nodes become its own, as when a Core loads.
    Texts Claimed(const std::string& plugin, const Texts& names, Plugin* owner = nullptr) {
        XMLNode info("<nodeinfo/>");
        for (const std::string& name : names)
            info.AddChild(XMLNode("<node/>")).attributes["name"] = name;
        const std::vector<TVL::CNode*> nodes = adaptor.ClaimNodes(plugin, info);
        for (std::size_t index = 0; owner && index < nodes.size(); ++index)
            if (nodes[index]) static_cast<TVL::CoreNode*>(nodes[index])->Claim(owner, names[index]);
        return Released(nodes);
    }
    void Claim(Plugin& owner, const std::string& plugin, const Texts& names) {
        Claimed(plugin, names, &owner);
    }
};
