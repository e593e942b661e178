// What many nodes cost, each: in a scene of ten times the nodes it is to be the same, but for the
// search of an order and for memory that is farther away.

#include <benchmark/benchmark.h>

#include <string>
#include <utility>
#include <vector>

#include "adaptor/max_adaptor_interface.h"
#include "bench/bench_world.h"
#include "bench/meter.h"
#include "headless/scene_view.h"
#include "host/hold.h"
#include "host/interface.h"
#include "scene_state/node_tags.h"

namespace {

constexpr int kFewNodes = 1000;
constexpr int kManyNodes = 10'000;
constexpr int kMostNodes = 100'000;

TVL::AdaptorInterface& Adaptor() {
    return *MaxAdaptorInterface::GetInstance();
}

// An owner that takes its nodes away when the user deletes them, as a Core does.
class Rig final : public TVL::CoreElement {
  public:
    Rig() { plugin = &record_; }
    std::vector<int> ListExtensions() override { return {43}; }
    std::intptr_t HandleExtension(int, void*) override {
        for (TVL::CNode* node : Adaptor().GetNodes(this))
            static_cast<TVL::CoreNode*>(node)->Delete(true);
        return 0;
    }

    std::vector<TVL::CNode*> MakeNodes(int count, TVL::CNode* parent = nullptr) {
        std::vector<TVL::CNode*> nodes;
        nodes.reserve(static_cast<std::size_t>(count));
        for (int index = 0; index < count; ++index)
            nodes.push_back(
                Adaptor().CreateHelperNode(this, std::to_string(index), parent, {}, nullptr));
        return nodes;
    }

    void LetNodesGo() {
        for (TVL::CNode* node : Adaptor().GetNodes(this))
            static_cast<TVL::CoreNode*>(node)->Destroy();
    }

  private:
    TVL::PluginRecord record_{"Rig"};
};

void InGroup(const auto& work) {
    Adaptor().BeginUndoGroup("work");
    work();
    Adaptor().EndUndoGroup();
}

// Each iteration begins with `prepare`, which is not measured, in a new scene.
void MeasureEach(benchmark::State& state, int nodes, const auto& prepare, const auto& work) {
    BenchWorld world;
    Rig rig;
    Meter meter(state, nodes);
    for (auto _ : state) {
        meter.Aside([&] {
            GetCOREInterface()->FlushUndoBuffer();
            rig.LetNodesGo();
            world.Session().NewScene();
            prepare(rig, world);
        });
        work(rig, world);
    }
    GetCOREInterface()->FlushUndoBuffer();
    rig.LetNodesGo();
}

void UndoCreation(benchmark::State& state, int nodes) {
    MeasureEach(
        state, nodes, [&](Rig& rig, BenchWorld&) { InGroup([&] { rig.MakeNodes(nodes); }); },
        [](Rig&, BenchWorld& world) { world.Session().Undo(); });
}

void DropUndoneCreation(benchmark::State& state, int nodes) {
    MeasureEach(
        state, nodes,
        [&](Rig& rig, BenchWorld& world) {
            InGroup([&] { rig.MakeNodes(nodes); });
            world.Session().Undo();
        },
        [](Rig&, BenchWorld&) { GetCOREInterface()->FlushUndoBuffer(); });
}

void ReleaseChildren(benchmark::State& state, int nodes) {
    std::vector<TVL::CNode*> children;
    TVL::CNode* parent = nullptr;
    MeasureEach(
        state, nodes,
        [&](Rig& rig, BenchWorld&) {
            parent = rig.MakeNodes(1).front();
            rig.MakeNodes(nodes, parent);
            children.clear();
            for (int index = 0; index < nodes; ++index)
                children.push_back(parent->GetChild(index));
        },
        [&](Rig&, BenchWorld&) {
            for (TVL::CNode* child : children)
                parent->ReleaseNode(child);
        });
}

void DeleteParent(benchmark::State& state, int nodes) {
    MeasureEach(
        state, nodes,
        [&](Rig& rig, BenchWorld&) { rig.MakeNodes(nodes, rig.MakeNodes(1).front()); },
        [](Rig&, BenchWorld& world) {
            INode* const parent = GetCOREInterface()->GetRootNode()->GetChildNode(0);
            theHold.Begin();
            GetCOREInterface()->DeleteNode(parent, 0, 0);
            theHold.Accept("delete");
            world.Session().Undo();
        });
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

std::string PluginName(int index) {
    return "Rig " + std::to_string(index);
}

void TagNodes() {
    int index = 0;
    for (const headless::NodeView& node : headless::Nodes())
        GetCOREInterface()
            ->GetINodeByHandle(node.handle)
            ->SetUserPropString("TVL_tag", "<TVL_tag><name>" + PluginName(index++) +
                                               "</name><objectname>there</objectname></TVL_tag>");
}

// Two nodes are asked for, of which one is there.
void ClaimFor(Rig& rig, const std::string& name) {
    static const XMLNode info("<nodeinfo><node name='there'/><node name='missing'/></nodeinfo>");
    for (TVL::CNode* found : Adaptor().ClaimNodes(name, info)) {
        if (!found) continue;
        static_cast<TVL::CoreNode*>(found)->Claim(&rig, name);
        static_cast<TVL::CoreNode*>(found)->Destroy();
    }
}

void LoadPlugins(benchmark::State& state, int plugins) {
    MeasureEach(
        state, plugins,
        [&](Rig& rig, BenchWorld& world) {
            for (int index = 0; index < plugins; ++index)
                GetCOREInterface()->CreateObjectNode(CreateNewTriObject());
            TagNodes();
            world.Core().onLoad = [&rig, plugins] {
                for (int index = 0; index < plugins; ++index)
                    ClaimFor(rig, PluginName(index));
            };
        },
        [](Rig&, BenchWorld&) { GatherSceneState(); });
}

using Work = void (*)(benchmark::State&, int);

void Register(const std::string& name, Work work) {
    const std::pair<int, const char*> sizes[] = {
        {kFewNodes, "1,000"}, {kManyNodes, "10,000"}, {kMostNodes, "100,000"}};
    for (const auto& [nodes, words] : sizes)
        benchmark::RegisterBenchmark((name + "/" + words).c_str(), work, nodes)->Iterations(1);
}

const bool isRegistered = [] {
    Register("undo the creation of nodes", UndoCreation);
    Register("drop a creation that is undone", DropUndoneCreation);
    Register("release the children of a node", ReleaseChildren);
    Register("delete a parent and undo that", DeleteParent);
    Register("delete by the user and undo that", UserDeletes);
    Register("claim for a plug-in, a node missing", LoadPlugins);
    return true;
}();

}  // namespace
