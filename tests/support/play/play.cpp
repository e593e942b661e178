#include "tests/support/play/play.h"

#include "controllers/scalar_control.h"
#include "headless/breaches.h"
#include "recorder/proxies/nodes.h"

namespace play {
namespace {

constexpr std::string_view kSetState = "set state ";

// Runs `work` at the end of a scope, also if something is thrown.
template <class Work>
std::shared_ptr<void> AtEnd(Work work) {
    return {nullptr, [work](void*) { work(); }};
}

}  // namespace

std::vector<INode*> SceneNodes() {
    std::vector<INode*> nodes{GetCOREInterface()->GetRootNode()};
    for (std::size_t parent = 0; parent < nodes.size(); ++parent)
        for (int child = 0; child < nodes[parent]->NumberOfChildren(); ++child)
            nodes.push_back(nodes[parent]->GetChildNode(child));
    nodes.erase(nodes.begin());
    return nodes;
}

Play::Play(bool isRecorded)
    : recorded(isRecorded ? std::make_unique<Recorded>() : nullptr),
      rigs{{{"Left", *this}, {"Right", *this}}},
      world({.recorder = recorded ? &recorded->recorder : nullptr}) {
    puppet::TheStage().onAttach = [this] {
        isGone_ = false;
        try {
            Meet("attach");
        } catch (...) {
            Vanish();
            throw;
        }
    };
    world.Core().onCall = [this](const std::string& call) { Answer(call); };
    world.Core().onOptionAsked = [this](int) { During("option", [] {}); };
    world.Core().onLeave = [this] {
        const auto end = AtEnd([this] { Vanish(); });
        Meet("detach");
    };
}

void Play::End() {
    onMoment = nullptr;
    if (!isGone_) Settle();
    world.ShutDown();
}

Play::~Play() {
    End();
    EXPECT_EQ(chunksAlive, 0);
    if (recorded) {
        EXPECT_GT(recorded->form.Calls(), 0U);
    }
    for (const std::string& fault : noted_)
        ADD_FAILURE() << fault;
}

void Play::Hear(const std::string& moment) {
    if (isGone_) Fail("the Core is told \"" + moment + "\" after it has left");
}

// The scene may be the reason why a step is released.
void Play::Meet(const std::string& moment) {
    if (!onMoment || isGone_) return;
    const auto end = AtEnd([this, was = sceneGoes] { sceneGoes = was; });
    sceneGoes |= moment == "reset" || moment == "released";
    onMoment(moment);
}

// The puppet's words are its calls, some with what was given behind them.
void Play::Answer(const std::string& call) {
    world.Core().TakeCalls();
    Hear(call);
    if (call == "get state")
        world.Core().state = XMLNode("<play><value>" + std::to_string(value) + "</value></play>");
    const bool isGiven = call.starts_with(kSetState);
    const XMLNode state = isGiven ? XMLNode(call.substr(kSetState.size())) : XMLNode();
    if (state.name == "play") value = std::stoi(state.Child("value").Text());
    for (Rig& rig : rigs) {
        if (call == "reset") rig.Drop();
        for (const auto& plugin : state.children)
            if (plugin->Child("name").Text() == rig.Name()) rig.Load(*plugin);
    }
    Meet(call.substr(0, call.find('<')));
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
    if (Behind(out.node)) out.node->ReleaseSnapshot(out.snapshot);
}

CMAXNode* Play::Behind(TVL::CNode* node) const {
    TVL::CNode* const real = recorded ? recorder::NodeProxy::From(node)->Behind() : node;
    return CMAXNode::liveInstances.Find(real);
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

void Play::ExcuseGoneNodes() {
    for (const Rig& rig : rigs)
        for (const auto& [node, restored] : rig.heard)
            if (!restored && Behind(node)) loose.insert(node->GetNodeName());
}

// Its plug-ins -----------------------------------------------------------------------------------

Rig::Rig(std::string name, Play& play) : record_{std::move(name)}, play_(play) {
    plugin = &record_;
}

std::vector<int> Rig::ListExtensions() {
    try {
        play_.During("extensions", [] {});
    } catch (...) {  // its nodes go without a word to it
        for (const TVL::CoreNode* node : Nodes())
            play_.loose.insert(node->GetNodeName());
        throw;
    }
    return {TVL::kNodesBeingDeleted, TVL::kSceneBeingSaved};
}

std::intptr_t Rig::HandleExtension(int id, void* argument) {
    if (id == TVL::kNodesBeingDeleted) play_.During("deletion", [this] { LetGo(); });
    if (id == TVL::kSceneBeingSaved)
        play_.During("saving", [&] { Store(*static_cast<XMLNode*>(argument)); });
    return 0;
}

void Rig::OnNodeRemoved(TVL::CNode* node) {
    play_.During("removed", [&] { heard[node] = false; });
}

void Rig::OnNodeRestored(TVL::CNode* node) {
    play_.During("restored", [&] {
        heard[node] = true;
        if (play_.sceneGoes) play_.loose.insert(node->GetNodeName());
    });
}

std::vector<TVL::CoreNode*> Rig::Nodes() {
    std::vector<TVL::CoreNode*> nodes;
    for (TVL::CNode* node : play_.Adaptor().GetNodes(this))
        nodes.push_back(static_cast<TVL::CoreNode*>(node));
    return nodes;
}

void Rig::Delete(TVL::CoreNode* node, bool withHostNode) {
    if (!play_.Adaptor().IsHoldingUndo()) Forget(node);
    node->Delete(withHostNode);
}

void Rig::Claim(TVL::CoreNode* found, const std::string& name) {
    if (TVL::CoreNode* const own = found->Claim(this, name)) {
        own->SetListener(this);
        Forget(own);
    }
    found->Destroy();
}

// Nodes may come, at the end, and go meanwhile.
void Rig::LetGo() {
    play_.Adaptor().BeginUndoGroup("let go");
    for (std::size_t left = Nodes().size(); left > 0 && !Nodes().empty(); --left)
        Delete(Nodes().front(), true);
    play_.Adaptor().EndUndoGroup();
}

void Rig::Drop() {
    for (TVL::CoreNode* node : Nodes())
        node->Destroy();
    heard.clear();
}

void Rig::Store(XMLNode& masters) {
    std::string nodes;
    for (const TVL::CoreNode* node : Nodes())
        nodes += "<node name=\"" + node->GetNodeName() + "\"/>";
    masters.AddChild(XMLNode("<masternode><TVL_Plugin><name>" + Name() + "</name><nodeinfo>" +
                             nodes + "</nodeinfo></TVL_Plugin></masternode>"));
}

// A name that is taken, as when a scene is merged into itself, gives way to a new one. Claims leave
// no record.
void Rig::Load(const XMLNode& pluginState) {
    const XMLNode& info = pluginState.Child("nodeinfo");
    const std::vector<TVL::CNode*> found = play_.Adaptor().ClaimNodes(Name(), info);
    for (std::size_t index = 0; index < found.size(); ++index) {
        if (!found[index]) continue;
        const std::string& stored = info.children[index]->attributes.at("name");
        const std::string name = play_.Adaptor().FindNode(this, stored) ? play_.NewName() : stored;
        if (theHold.Holding() || play_.IsSceneUnsure()) play_.loose.insert(name);
        Claim(static_cast<TVL::CoreNode*>(found[index]), name);
    }
}

// Invariants -------------------------------------------------------------------------------------

namespace {

void FindUnsortedKeys(Faults& faults) {
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
void FindWrongNodes(Play& play, Faults& faults) {
    std::map<const INode*, std::vector<std::string>> on;
    std::set<const CMAXNode*> listed;
    for (const auto& [number, node] : AdaptorNodes().nodes) {
        if (!listed.insert(node).second) faults.push_back("a node is listed twice");
        on[node->HostNode()].push_back(node->NodeName());
    }
    for (const auto& [host, names] : on) {
        const auto known = std::ranges::count_if(
            names, [&](const std::string& name) { return !play.loose.contains(name); });
        if (!host && known > 0) faults.push_back("a node is listed and not in the scene");
        if (host && known > 1) faults.push_back("two nodes are listed for one in the scene");
        if (host && names.size() > 1) play.loose.insert(names.begin(), names.end());
    }
}

void FindFalseWords(Play& play, Faults& faults) {
    for (Rig& rig : play.rigs) {
        const std::vector<TVL::CoreNode*> nodes = rig.Nodes();
        for (const auto& [node, restored] : rig.heard)
            if ((std::ranges::count(nodes, node) > 0) != restored)
                faults.push_back(restored ? "the listener knows a node that is not listed"
                                          : "the listener was not told of a node that is listed");
    }
}

// What is out keeps its time, so no pool has lent it twice.
void FindWrongSnapshots(Play& play, Faults& faults) {
    std::erase_if(play.lent, [&](const Lent& out) { return !play.Behind(out.node); });
    for (const Lent& out : play.lent)
        if (out.snapshot->GetTime() != out.seconds) faults.push_back("a snapshot was lent twice");
}

}  // namespace

Faults Play::Broken() {
    Faults faults = std::exchange(noted_, {});
    for (const std::string& breach : headless::TakeBreachLines())
        faults.push_back(breach);
    if (recorded)
        for (std::string& fault : recorded->form.TakeFaults())
            faults.push_back(std::move(fault));
    FindUnsortedKeys(faults);
    FindWrongNodes(*this, faults);
    FindFalseWords(*this, faults);
    FindWrongSnapshots(*this, faults);
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
