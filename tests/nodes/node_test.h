#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/hold.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "tests/support/matrices.h"
#include "tests/support/plugin.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/ids.h"

using Names = std::vector<std::string>;
using Place = std::array<double, 3>;

// Notes what a node's listener hears, as " -Hip" and " +Hip", and what the host calls what is back.
class Listener final : public TVL::NodeListener {
  public:
    void OnNodeRemoved(TVL::CNode* node) override { heard += " -" + node->GetNodeName(); }
    void OnNodeRestored(TVL::CNode* node) override {
        heard += " +" + node->GetNodeName();
        restored.push_back(static_cast<TVL::CoreNode*>(node)->GetName());
    }

    std::string heard;
    Names restored;
};

inline TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
    mesh.faces = {0, 1, 2};
    return mesh;
}

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

    // Names of the rig's nodes, in the adaptor's order, each behind a space.
    std::string Listed() {
        std::string names;
        for (const TVL::CNode* node : adaptor.GetNodes(&rig))
            names += " " + node->GetNodeName();
        return names;
    }

    static Node* Core(TVL::CNode* node) { return static_cast<Node*>(node); }

    // A node on an object that a person has made, as a Core reaches it.
    static std::unique_ptr<CMAXNode> NodeOn(Object* object) {
        return std::make_unique<CMAXNode>(nullptr, GetCOREInterface()->CreateObjectNode(object));
    }

    static INode* Host(const std::string& hostName) { return headless::FindNode(hostName); }

    // The user deletes a node, without an announcement.
    static void DeleteInHost(const std::string& hostName) {
        GetCOREInterface()->DeleteNode(Host(hostName));
    }

    // The host's nodes, in brackets those that hang below another, "*" behind what is selected.
    static std::string Scene(std::uint32_t parent = 0) {
        std::string text;
        for (const headless::NodeView& node : headless::Nodes()) {
            if (node.parent != parent) continue;
            const std::string below = Scene(node.handle);
            text += (text.empty() ? "" : " ") + node.name + (node.selected ? "*" : "");
            if (!below.empty()) text += "(" + below + ")";
        }
        return text;
    }

    // Runs `work` as one undo group.
    template <class Work>
    void InGroup(const std::string& name, Work work) {
        adaptor.BeginUndoGroup(name);
        work();
        adaptor.EndUndoGroup();
    }
};
