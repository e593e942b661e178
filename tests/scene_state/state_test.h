#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adaptor/utility_manager.h"
#include "headless/memory_chunks.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "scene_state/node_tags.h"
#include "tests/support/plugin.h"
#include "tests/support/world.h"

using Texts = std::vector<std::string>;

// A chunk that holds bytes, then further chunks.
struct StoredChunk {
    std::uint16_t id = 0;
    std::string bytes = {};
    std::vector<StoredChunk> parts = {};

    StoredChunk& operator[](std::size_t index) { return parts[index]; }

    void WriteTo(ISave* save) const {
        save->BeginChunk(id);
        save->Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()), nullptr);
        for (const StoredChunk& part : parts)
            part.WriteTo(save);
        save->EndChunk();
    }
};
using StoredBytes = std::vector<std::byte>;

inline StoredChunk TextChunk(std::uint16_t id, const std::string& text) {
    return {id, text + '\0'};
}

// A scene with stored state in it, and a Core that loads.
class StateTest : public testing::Test {
  protected:
    Plugin rig{"Rig"};
    Plugin other{"Other"};
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    TVL::CoreNode* Helper(Plugin& owner, const std::string& name) {
        TVL::CNode* const node = adaptor.CreateHelperNode(&owner, name, nullptr, {}, nullptr);
        return static_cast<TVL::CoreNode*>(node);
    }

    // A node of the host's that no Core knows, with a tag on it.
    static INode* SceneNode(const std::string& name, const std::string& tag,
                            INode* parent = nullptr) {
        Interface& host = *GetCOREInterface();
        void* const object = host.CreateInstance(GEOMOBJECT_CLASS_ID, kTriObjectClassId);
        INode* const node = host.CreateObjectNode(static_cast<Object*>(object));
        node->SetName(name.c_str());
        if (!tag.empty()) node->SetUserPropString("TVL_tag", tag);
        if (parent) parent->AttachChild(node);
        return node;
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

    static std::string Holding(const char* element, const std::string& text) {
        return XMLNode(element, text).Write();
    }

    static XMLNode NodeInfo(const Texts& names) {
        XMLNode info("<nodeinfo/>");
        for (const std::string& name : names)
            info.AddChild(XMLNode("<node/>")).attributes["name"] = name;
        return info;
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
    Texts Claimed(const std::string& plugin, const Texts& names) {
        return Released(adaptor.ClaimNodes(plugin, NodeInfo(names)));
    }

    // Makes the node the plug-in's own, as a Core does while it loads.
    void Claim(Plugin& owner, const std::string& plugin, const Texts& names) {
        const std::vector<TVL::CNode*> nodes = adaptor.ClaimNodes(plugin, NodeInfo(names));
        for (std::size_t index = 0; index < nodes.size(); ++index) {
            auto* const node = static_cast<TVL::CoreNode*>(nodes[index]);
            if (!node) continue;
            node->Claim(&owner, names[index]);
            node->Destroy();
        }
    }

    // What the Core was given since the last time.
    Texts States() {
        constexpr std::string_view mark = "set state ";
        Texts states;
        for (const std::string& call : world.Core().TakeCalls())
            if (call.starts_with(mark)) states.push_back(call.substr(mark.size()));
        return states;
    }

    // With each state that it is given the Core does `act`. Gives the states.
    Texts Gathered(const std::function<void()>& act = nullptr) {
        States();
        world.Core().onCall = [&](const std::string& call) {
            if (act && call.starts_with("set state")) act();
        };
        GatherSceneState();
        world.Core().onCall = nullptr;
        return States();
    }

    // `isWhole`: the loading does not end in a state chunk that cannot be read.
    Texts Loaded(std::span<const std::byte> bytes, bool isWhole = true) {
        headless::LoadBytes(bytes, [&](ILoad* load) {
            EXPECT_EQ(UtilityManager::Get().Load(load) == IO_OK, isWhole);
            EXPECT_TRUE(isWhole || load->CurChunkID() == 1032);
            return IO_OK;
        });
        return States();
    }
    static StoredBytes Bytes(const std::vector<StoredChunk>& chunks) {
        return headless::SavedBytes([&](ISave* save) {
            for (const StoredChunk& chunk : chunks)
                chunk.WriteTo(save);
            return IO_OK;
        });
    }
    static StoredBytes Saved() {
        return headless::SavedBytes([](ISave* save) { return UtilityManager::Get().Save(save); });
    }
};
