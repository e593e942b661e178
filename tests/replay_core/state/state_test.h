#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "headless/scene_view.h"
#include "host/interface.h"
#include "replay_core/state/load_state.h"
#include "replay_core/state/read_state.h"
#include "replay_core/state/stored_state.h"
#include "replay_core/state/takes.h"
#include "scene_state/node_tags.h"
#include "tests/support/world.h"

// Takes of the example Core in a scene of the real adaptor's, saved and opened in memory.
class StateTest : public testing::Test {
  protected:
    using Names = std::vector<std::string>;

    StateTest() {
        takes = std::make_unique<replay::Takes>(adaptor);
        world.Core().onCall = [this](const std::string& call) {
            constexpr std::string_view set = "set state ";
            if (call.starts_with(set)) Load(XMLNode(call.substr(set.size())));
        };
    }

    // As recording does it: the nodes come within an undo group, which notes the capture.
    void Record(replay::Take& take, const Names& names) {
        adaptor.BeginUndoGroup("Record");
        for (const std::string& name : names)
            adaptor.CreateHelperNode(&take, name, nullptr, {}, &take.Book());
        take.Note({.capture = "captures/" + take.Name() + ".bvh",
                   .metresPerUnit = 0.056444,
                   .frameSeconds = 1.0 / 120,
                   .firstFrame = 3,
                   .endFrame = 40});
        adaptor.EndUndoGroup();
    }

    void Load(const XMLNode& state) {
        loaded = replay::LoadState(adaptor, *takes, state);
        replay::WriteToTrace(loaded);
    }

    std::string WholeText() const { return replay::WholeState(*takes).Write("\n", "\t", ""); }

    // Text by host name of the tags that a save would write.
    std::vector<std::pair<std::string, std::string>> SavedTags() {
        StoreSceneState();
        std::vector<std::pair<std::string, std::string>> tags;
        for (const headless::NodeView& node : headless::Nodes())
            if (node.userProperties.contains("TVL_tag") &&
                !node.userProperties.at("TVL_tag").empty())
                tags.emplace_back(node.name, node.userProperties.at("TVL_tag"));
        ClearNodeTags();
        return tags;
    }

    static Names NodeNames(const replay::Take& take) {
        Names names;
        for (const TVL::CNode* node : take.Book().Nodes())
            names.push_back(node->GetNodeName());
        return names;
    }

    Names TakeNames() const {
        Names names;
        for (const auto& take : takes->All())
            names.push_back(take->Name());
        return names;
    }

    std::unique_ptr<replay::Takes> takes;  // outlives what names them in the world
    World world;
    TVL::AdaptorInterface& adaptor = world.Adaptor();
    replay::LoadedState loaded;  // the last call's
};
