#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "headless/scene_view.h"
#include "host/node.h"
#include "tests/support/matrices.h"
#include "tests/support/plugin.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/adaptor_interface.h"

// Notes what a node's listener hears, as "-Hip" and "+Hip".
class Listener final : public TVL::NodeListener {
  public:
    void OnNodeRemoved(TVL::CNode* node) override {
        heard.push_back("-" + node->GetNodeName());
        if (onRemoved) onRemoved(node);
    }
    void OnNodeRestored(TVL::CNode* node) override {
        heard.push_back("+" + node->GetNodeName());
        if (onRestored) onRestored(node);
    }

    std::vector<std::string> heard;
    std::function<void(TVL::CNode*)> onRemoved;
    std::function<void(TVL::CNode*)> onRestored;
};
using Heard = std::vector<std::string>;

// A host with a Core, whose plug-in "Rig" works on nodes. One metre is 39.37 host units, a second
// 4800 ticks.
class NodeTest : public testing::Test {
  protected:
    using Node = TVL::CoreNode;

    // Before the world comes up, so that they outlive what it holds.
    Plugin rig{"Rig"};
    Plugin other{"Other"};
    Listener listener;
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    Node* Helper(const std::string& name, Node* parent = nullptr, TVL::CMesh mesh = {}) {
        return Core(adaptor.CreateHelperNode(&rig, name, parent, std::move(mesh), &listener));
    }
    Node* Camera(const std::string& name, Node* parent = nullptr) {
        return Core(adaptor.CreateLensNode(&rig, name, parent, &listener));
    }
    Node* Find(const std::string& name) { return Core(adaptor.FindNode(&rig, name)); }

    // Names of the rig's nodes, in the adaptor's order.
    std::vector<std::string> Listed() {
        std::vector<std::string> names;
        for (const TVL::CNode* node : adaptor.GetNodes(&rig))
            names.push_back(node->GetNodeName());
        return names;
    }

    static Node* Core(TVL::CNode* node) { return static_cast<Node*>(node); }

    static INode* Host(const std::string& hostName) { return headless::FindNode(hostName); }

    static std::vector<std::string> Selected() {
        std::vector<std::string> names;
        for (const headless::NodeView& node : headless::Nodes())
            if (node.selected) names.push_back(node.name);
        return names;
    }

    // Runs `work` as one undo group.
    template <class Work>
    void InGroup(const std::string& name, Work work) {
        adaptor.BeginUndoGroup(name);
        work();
        adaptor.EndUndoGroup();
    }
};
