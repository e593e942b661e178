#include "tests/support/play/play.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "foundation/thrown.h"
#include "headless/breaches.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"

namespace play {
namespace {

constexpr std::string_view kSetState = "set state ";

// A mark that is afterwards what it was, also if something is thrown.
class Kept {
  public:
    explicit Kept(bool& mark) : mark_(mark), was_(mark) {}
    ~Kept() { mark_ = was_; }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;

  private:
    bool& mark_;
    bool was_;
};

}  // namespace

std::vector<INode*> SceneNodes() {
    std::vector<INode*> nodes{GetCOREInterface()->GetRootNode()};
    for (std::size_t parent = 0; parent < nodes.size(); ++parent)
        for (int child = 0; child < nodes[parent]->NumberOfChildren(); ++child)
            nodes.push_back(nodes[parent]->GetChildNode(child));
    nodes.erase(nodes.begin());
    return nodes;
}

Play::Play() : rigs{{{"Left", *this}, {"Right", *this}}} {
    puppet::TheStage().onAttach = [this] {
        isGone_ = false;  // unless it refuses
        const auto thrown = TVL::ThrownBy([this] { Meet("attach"); });
        if (!thrown) return;
        Vanish();
        throw std::runtime_error(*thrown);
    };
    world.Core().onCall = [this](const std::string& call) { Answer(call); };
    world.Core().onOptionAsked = [this](int) { During("option", [] {}); };
    world.Core().onLeave = [this] { Leave(); };
}

Play::~Play() {
    onMoment = nullptr;
    if (!isGone_) Settle();
    world.ShutDown();
    EXPECT_EQ(chunksAlive, 0);
    for (const std::string& fault : noted_)
        ADD_FAILURE() << fault;
}

void Play::Do(const Act& act) {
    if (act.by == By::kUser || !isGone_) act.run(*this);
}

void Play::Hear(const std::string& moment) {
    if (isGone_) Fail("the Core is told \"" + moment + "\" after it has left");
}

void Play::Meet(const std::string& moment) {
    if (!onMoment || isGone_) return;
    const Kept kept(sceneGoes);
    if (moment == "released") sceneGoes = true;  // it may be why
    onMoment(moment);
}

// The puppet's words are its calls, some with what was given behind them.
void Play::Answer(const std::string& call) {
    const Kept kept(sceneGoes);
    world.Core().TakeCalls();
    Hear(call);
    if (call == "get state")
        world.Core().state = XMLNode("<play><value>" + std::to_string(value) + "</value></play>");
    if (call.starts_with(kSetState)) Load(XMLNode(call.substr(kSetState.size())));
    if (call == "reset") {
        for (Rig& rig : rigs)
            rig.Drop();
        sceneGoes = true;
    }
    Meet(call.substr(0, call.find('<')));
}

void Play::Load(const XMLNode& state) {
    if (state.name == "play") value = std::stoi(state.Child("value").Text());
    for (Rig& rig : rigs)
        for (const auto& plugin : state.children)
            if (plugin->Child("name").Text() == rig.Name()) rig.Load(*plugin);
}

// The Core is gone whatever it did last.
void Play::Leave() {
    const auto thrown = TVL::ThrownBy([this] { Meet("detach"); });
    Vanish();
    if (thrown) throw std::runtime_error(*thrown);
}

void Play::Vanish() {
    for (Rig& rig : rigs)
        rig.heard.clear();
    lent.clear();
    recordings = focuses = value = 0;
    isGone_ = true;
}

void Play::Settle() {
    while (Adaptor().IsHoldingUndo())
        Adaptor().EndUndoGroup();
    for (; recordings > 0; --recordings)
        Adaptor().EndRecording();
    for (; focuses > 0; --focuses)
        Adaptor().RestoreFocus();
    while (!lent.empty())
        ReleaseLast();
}

// A snapshot whose node has died is past giving back.
void Play::ReleaseLast() {
    if (lent.empty()) return;
    const Lent out = lent.back();
    lent.pop_back();
    if (IsAlive(out.node)) out.node->ReleaseSnapshot(out.snapshot);
}

bool Play::IsSceneUnsure() const {
    return theHold.RestoreOrRedoing() || sceneGoes;
}

std::string Play::NewName() {
    const bool isUnrecorded = theHold.Holding() && !Adaptor().IsHoldingUndo();
    std::string name = "n" + std::to_string(names_++);
    if (isUnrecorded || IsSceneUnsure()) loose.insert(name);
    return name;
}

std::vector<TVL::CoreNode*> Play::AllNodes() {
    std::vector<TVL::CoreNode*> nodes = rigs[0].Nodes();
    for (TVL::CoreNode* node : rigs[1].Nodes())
        nodes.push_back(node);
    return nodes;
}

TVL::CoreNode* Play::AnyNode() {
    const std::vector<TVL::CoreNode*> nodes = AllNodes();
    return nodes.empty() ? nullptr : choices.OneOf(nodes);
}

INode* Play::AnySceneNode() {
    const std::vector<INode*> nodes = SceneNodes();
    return nodes.empty() ? nullptr : choices.OneOf(nodes);
}

void Play::ExcuseGoneNodes() {
    for (const Rig& rig : rigs)
        for (const auto& [node, restored] : rig.heard)
            if (!restored && IsAlive(node)) loose.insert(node->GetNodeName());
}

Rig& Play::OwnerOf(TVL::CoreNode* node) {
    const std::vector<TVL::CoreNode*> right = rigs[1].Nodes();
    return rigs[std::ranges::count(right, node) > 0 ? 1 : 0];
}

bool Play::IsAlive(const TVL::CNode* node) const {
    return CMAXNode::liveInstances.Find(const_cast<TVL::CNode*>(node)) != nullptr;
}

// Invariants -------------------------------------------------------------------------------------

void Play::FindUnsortedKeys(Faults& faults) const {
    const auto look = [&faults](Control& control) {
        Tab<TimeValue> times;
        control.GetKeyTimes(times, FOREVER, 0);
        for (int index = 1; index < times.Count(); ++index)
            if (times[index - 1] >= times[index]) faults.push_back("times of keys do not rise");
    };
    TransformControl::liveInstances.ForEachFromLast(look);
    ScalarControl::liveInstances.ForEachFromLast(look);
}

// Of two nodes that a claim has brought onto one scene node the host knows but the first.
void Play::FindWrongNodes(Faults& faults) {
    std::map<const CMAXNode*, int> listed;
    std::map<const INode*, std::vector<std::string>> on;
    for (const auto& [number, node] : AdaptorNodes().nodes) {
        if (listed[node]++ == 1) faults.push_back("a node is listed twice");
        on[node->HostNode()].push_back(node->NodeName());
    }
    for (const auto& [host, names] : on) {
        const auto known = std::ranges::count_if(
            names, [this](const std::string& name) { return !loose.contains(name); });
        if (!host && known > 0) faults.push_back("a node is listed and not in the scene");
        if (host && known > 1) faults.push_back("two nodes are listed for one in the scene");
        if (host && names.size() > 1) loose.insert(names.begin(), names.end());
    }
}

void Play::FindFalseWords(Faults& faults) {
    for (Rig& rig : rigs) {
        const std::vector<TVL::CoreNode*> nodes = rig.Nodes();
        for (const auto& [node, restored] : rig.heard)
            if ((std::ranges::count(nodes, node) > 0) != restored)
                faults.push_back(restored ? "the listener knows a node that is not listed"
                                          : "the listener was not told of a node that is listed");
    }
}

// What is out keeps its time, so no pool has lent it twice.
void Play::FindWrongSnapshots(Faults& faults) {
    std::erase_if(lent, [this](const Lent& out) { return !IsAlive(out.node); });
    for (const Lent& out : lent)
        if (out.snapshot->GetTime() != out.seconds) faults.push_back("a snapshot was lent twice");
}

Faults Play::Broken() {
    Faults faults = std::exchange(noted_, {});
    for (const std::string& breach : headless::TakeBreachLines())
        faults.push_back(breach);
    FindUnsortedKeys(faults);
    FindWrongNodes(faults);
    FindFalseWords(faults);
    FindWrongSnapshots(faults);
    if (isGone_ && chunksAlive > 0) faults.push_back("undo chunks of a Core that has left");
    return faults;
}

Faults Play::BrokenAtRest() {
    Faults faults = Broken();
    const std::pair<bool, const char*> wrong[] = {
        {Adaptor().IsHoldingUndo(), "an undo group is open"},
        {theHold.Holding(), "a hold is open"},
        {Animating(), "animate mode is on"},
        {!Session().AnimateButtonEnabled(), "the animate button is off"},
        {!Session().AcceleratorsEnabled(), "the accelerators are off"},
    };
    for (const auto& [is, what] : wrong)
        if (is) faults.push_back(what);
    return faults;
}

}  // namespace play
