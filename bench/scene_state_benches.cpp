// What a save and a load cost for each node: in a scene of ten times the nodes it is to be the
// same. Twenty nodes make a plug-in, each of which stores its state and claims its nodes again.

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "scene_state/node_tags.h"

namespace {

constexpr int kNodesOfPlugin = 20;

class StoredPlugin final : public TVL::CoreElement {
  public:
    explicit StoredPlugin(const std::string& name) : record_{name} {
        plugin = &record_;
        nodeInfo_.Parse("<nodeinfo/>");
        for (int index = 0; index < kNodesOfPlugin; ++index)
            nodeInfo_.AddChild(XMLNode("<node/>")).attributes["name"] = std::to_string(index);
    }

    std::vector<int> ListExtensions() override { return {56}; }
    std::intptr_t HandleExtension(int, void* argument) override {
        XMLNode master("<masternode/>");
        master.AddChild(XMLNode("<TVL_Plugin/>")).AddChild(XMLNode("name", record_.name));
        static_cast<XMLNode*>(argument)->AddChild(master);
        return 0;
    }

    void MakeNodes() {
        for (int index = 0; index < kNodesOfPlugin; ++index)
            Adaptor().CreateHelperNode(this, std::to_string(index), nullptr, {}, nullptr);
    }

    void ClaimNodes() {
        int index = 0;
        for (TVL::CNode* found : Adaptor().ClaimNodes(record_.name, nodeInfo_)) {
            auto* const node = static_cast<TVL::CoreNode*>(found);
            node->Claim(this, std::to_string(index++));
            node->Destroy();
        }
    }

  private:
    static TVL::AdaptorInterface& Adaptor() { return *MaxAdaptorInterface::GetInstance(); }

    TVL::PluginRecord record_;
    XMLNode nodeInfo_;
};

using Plugins = std::vector<std::unique_ptr<StoredPlugin>>;

Plugins MakePlugins(int nodes) {
    Plugins plugins;
    for (int index = 0; index < nodes / kNodesOfPlugin; ++index) {
        plugins.push_back(std::make_unique<StoredPlugin>("Rig " + std::to_string(index)));
        plugins.back()->MakeNodes();
    }
    return plugins;
}

// The scene nodes stay, with whatever tags they bear.
void LetNodesGo() {
    while (!AdaptorNodes().nodes.empty())
        AdaptorNodes().nodes.rbegin()->second->Destroy();
}

void StoreState(benchmark::State& state, int nodes) {
    const BenchWorld world;
    const Plugins plugins = MakePlugins(nodes);
    {
        Meter meter(state, nodes);
        for (auto _ : state)
            StoreSceneState();
    }
    LetNodesGo();
}

void GatherState(benchmark::State& state, int nodes) {
    BenchWorld world;
    const Plugins plugins = MakePlugins(nodes);
    world.Core().onLoad = [&] {
        for (const auto& plugin : plugins)
            plugin->ClaimNodes();
    };
    {
        Meter meter(state, nodes);
        for (auto _ : state) {
            meter.Aside([] {
                StoreSceneState();
                LetNodesGo();
            });
            GatherSceneState();
        }
    }
    LetNodesGo();
}

void Few(benchmark::internal::Benchmark* bench) {
    bench->Iterations(5);
}

BENCHMARK_CAPTURE(StoreState, few, 1000)->Name("store the scene's state/1,000 nodes")->Apply(Few);
BENCHMARK_CAPTURE(StoreState, many, 10000)
    ->Name("store the scene's state/10,000 nodes")
    ->Apply(Few);
BENCHMARK_CAPTURE(GatherState, few, 1000)->Name("gather the scene's state/1,000 nodes")->Apply(Few);
BENCHMARK_CAPTURE(GatherState, many, 10000)
    ->Name("gather the scene's state/10,000 nodes")
    ->Apply(Few);

}  // namespace
