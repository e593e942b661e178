// What many nodes cost, each: in a scene of ten times the nodes it is to be the same, but for the
// search of an order and for memory that is farther away.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "scene_state/node_tags.h"
#include "scene_state/state_format.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/ids.h"

namespace {

constexpr int kManyNodes = 10'000;
constexpr int kMostNodes = 100'000;

TVL::AdaptorInterface& Adaptor() {
    return *MaxAdaptorInterface::GetInstance();
}

// An owner that stores its state, and takes its nodes away when the user deletes them, as a Core
// does.
class Rig final : public TVL::CoreElement {
  public:
    explicit Rig(const std::string& name = "Rig") : record_{name} { plugin = &record_; }
    std::vector<int> ListExtensions() override { return {TVL::kNodesBeingDeleted}; }
    std::intptr_t HandleExtension(int id, void* argument) override {
        if (id == TVL::kSceneBeingSaved) {
            XMLNode master("<masternode/>");
            master.AddChild(XMLNode("<TVL_Plugin/>")).AddChild(XMLNode("name", record_.name));
            static_cast<XMLNode*>(argument)->AddChild(master);
            return 0;
        }
        for (TVL::CNode* node : Adaptor().GetNodes(this))
            static_cast<TVL::CoreNode*>(node)->Delete(true);
        return 0;
    }

    void MakeNodes(int count) {
        for (int index = 0; index < count; ++index)
            Adaptor().CreateHelperNode(this, std::to_string(index), nullptr, {}, nullptr);
    }

    // Nodes that are called by their numbers.
    void ClaimNodes(const XMLNode& sought) {
        for (TVL::CNode* found : Adaptor().ClaimNodes(record_.name, sought)) {
            if (!found) continue;
            static_cast<TVL::CoreNode*>(found)->Claim(this, std::to_string(claimed_++));
            static_cast<TVL::CoreNode*>(found)->Destroy();
        }
    }

  private:
    TVL::PluginRecord record_;
    int claimed_ = 0;
};

// The scene nodes stay, with whatever tags they bear.
void LetNodesGo() {
    while (!AdaptorNodes().nodes.empty())
        AdaptorNodes().nodes.rbegin()->second->Destroy();
}

// Each iteration begins with `prepare`, which is not measured, in a new scene.
void MeasureEach(benchmark::State& state, int nodes, const auto& prepare, const auto& work) {
    BenchWorld world;
    Rig rig;
    const auto clear = [] {
        GetCOREInterface()->FlushUndoBuffer();
        LetNodesGo();
    };
    {
        Meter meter(state, nodes);
        for (auto _ : state) {
            meter.Aside([&] {
                clear();
                world.Session().NewScene();
                prepare(rig, world);
            });
            work(rig, world);
        }
    }
    clear();
}

void UndoCreation(benchmark::State& state, int nodes) {
    MeasureEach(
        state, nodes,
        [&](Rig& rig, BenchWorld&) {
            Adaptor().BeginUndoGroup("work");
            rig.MakeNodes(nodes);
            Adaptor().EndUndoGroup();
        },
        [](Rig&, BenchWorld& world) { world.Session().Undo(); });
}

void UserDeletes(benchmark::State& state, int nodes) {
    MeasureEach(
        state, nodes,
        [&](Rig& rig, BenchWorld&) {
            rig.MakeNodes(nodes);
            for (const headless::NodeView& node : headless::Nodes()) {
                INode* const host = GetCOREInterface()->GetINodeByHandle(node.handle);
                GetCOREInterface()->SelectNode(host, 0);
            }
        },
        [](Rig&, BenchWorld& world) {
            world.Session().DeleteSelected();
            world.Session().Undo();
        });
}

// Twenty nodes make a plug-in, each of which stores its state and claims its nodes again.
constexpr int kNodesOfPlugin = 20;
using Plugins = std::vector<std::unique_ptr<Rig>>;

Plugins MakePlugins(int nodes) {
    Plugins plugins;
    for (int index = 0; index < nodes / kNodesOfPlugin; ++index) {
        plugins.push_back(std::make_unique<Rig>("Rig " + std::to_string(index)));
        plugins.back()->MakeNodes(kNodesOfPlugin);
    }
    return plugins;
}

void StoreState(benchmark::State& state, int nodes) {
    Plugins plugins;
    MeasureEach(
        state, nodes, [&](Rig&, BenchWorld&) { plugins = MakePlugins(nodes); },
        [](Rig&, BenchWorld&) { StoreSceneState(); });
}

void GatherState(benchmark::State& state, int nodes) {
    Plugins plugins;
    XMLNode sought("<nodeinfo/>");
    for (int index = 0; index < kNodesOfPlugin; ++index)
        sought.AddChild(XMLNode("<node/>")).attributes["name"] = std::to_string(index);
    MeasureEach(
        state, nodes,
        [&](Rig&, BenchWorld& world) {
            world.Core().onLoad = [&] {
                for (const auto& plugin : plugins)
                    plugin->ClaimNodes(sought);
            };
            plugins = MakePlugins(nodes);
            StoreSceneState();
            LetNodesGo();
        },
        [](Rig&, BenchWorld&) { GatherSceneState(); });
}

// A plain walk over the tagged nodes, which no way of gathering does without: each tag is read and
// parsed, and then cleared on its node.
void ReadTags(benchmark::State& state, int nodes) {
    Plugins plugins;
    MeasureEach(
        state, nodes,
        [&](Rig&, BenchWorld&) {
            plugins = MakePlugins(nodes);
            StoreSceneState();
            LetNodesGo();
        },
        [&](Rig&, BenchWorld&) {
            int tags = 0;
            WalkScene([&](INode& node) {
                const auto text = TagTextOn(node);
                if (text && XMLNode(*text).name == kNodeTag) ++tags;
            });
            WalkScene([](INode& node) { node.SetUserPropString(kNodeTag, ""); });
            if (tags != nodes) state.SkipWithError("other tags");
        });
}

// The same of storing: a text of a tag's length onto each node.
void WriteTexts(benchmark::State& state, int nodes) {
    const std::string text(64, 'x');
    MeasureEach(
        state, nodes, [&](Rig& rig, BenchWorld&) { rig.MakeNodes(nodes); },
        [&](Rig&, BenchWorld&) {
            WalkScene([&](INode& node) { node.SetUserPropString(kNodeTag, text); });
        });
}

using Work = void (*)(benchmark::State&, int);

void Register(const std::string& name, Work work) {
    const auto run = [work](benchmark::State& state) {
        work(state, static_cast<int>(state.range(0)));
    };
    benchmark::RegisterBenchmark(name.c_str(), run)
        ->Arg(kManyNodes)
        ->Arg(kMostNodes)
        ->Iterations(1);
}

const bool scenesAreRegistered = [] {
    Register("undo the creation of nodes/ours", UndoCreation);
    Register("delete by the user and undo that/ours", UserDeletes);
    Register("store the scene's state/ours", StoreState);
    Register("store the scene's state/plain walk", WriteTexts);
    Register("gather the scene's state/ours", GatherState);
    Register("gather the scene's state/plain walk", ReadTags);
    return true;
}();

}  // namespace
