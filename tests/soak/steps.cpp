#include <algorithm>
#include <set>
#include <string_view>

#include "core_link/core_link.h"
#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "resources/resource_ids.h"
#include "tests/soak/soak.h"
#include "tests/support/matrices.h"

namespace soak {
namespace {

INode* AnySceneNode(Soak& soak) {
    const std::vector<INode*> nodes = play::SceneNodes();
    return nodes.empty() ? nullptr : soak.play.choices.OneOf(nodes);
}

TimeValue AnyTick(Soak& soak) {
    return 80 * (soak.play.choices.Below(24) - 4);
}

// One undo step of the user's, who cannot work while a Core holds undo.
template <class Change>
void AsUser(Change change) {
    if (theHold.Holding()) return;
    theHold.Begin();
    change();
    theHold.Accept("user");
}

void Move(Soak& soak, const Matrix3& local) {
    INode* const node = AnySceneNode(soak);
    if (!node) return;
    const TimeValue t = AnyTick(soak);
    AsUser([&] {
        if (soak.play.choices.Chance()) AnimateOn();
        node->SetNodeTM(t, local * node->GetNodeTM(t));
        AnimateOff();
    });
}

void Shift(Soak& soak) {
    Move(soak, MovedBy({static_cast<float>(soak.play.choices.Below(9)), 0, 1}));
}

// Flat and mirrored ones among them, which a parent's change has no inverse for.
void Scale(Soak& soak) {
    constexpr float kScales[] = {1, -1, 2, 0.5F, 0, 1e-6F};
    Matrix3 scale;
    scale.Scale({soak.play.choices.OneOf(kScales), soak.play.choices.OneOf(kScales), 1}, true);
    Move(soak, scale);
}

void Turn(Soak& soak) {
    Move(soak, TurnedAboutZ(soak.play.choices.Below(12) * 30));
}

void HangBelow(Soak& soak) {
    INode* const node = AnySceneNode(soak);
    INode* const parent = soak.play.choices.Chance() ? AnySceneNode(soak) : nullptr;
    if (!node || (parent && play::IsBelow(parent, node))) return;
    AsUser([&] { (parent ? parent : GetCOREInterface()->GetRootNode())->AttachChild(node, 1); });
}

void AddNode(Soak& soak) {
    if (play::SceneNodes().size() >= 24) return;
    AsUser([&] {
        Object* const object = soak.play.choices.Chance()
                                   ? GetCOREInterface()->CreateCameraObject(0)
                                   : headless::NewSphere(1, 8);
        GetCOREInterface()->CreateObjectNode(object)->SetName("user");
    });
}

void PickNode(Soak& soak) {
    INode* const node = AnySceneNode(soak);
    if (!node) return;
    AsUser([&] { GetCOREInterface()->SelectNode(node, soak.play.choices.Below(2)); });
}

void Hide(Soak& soak) {
    INode* const node = AnySceneNode(soak);
    if (!node) return;
    AsUser([&] { node->Hide(soak.play.choices.Chance()); });
}

// At least one key stays, since a table without any tells by its cached key what it is.
void DeleteKeys(Soak& soak) {
    INode* const node = AnySceneNode(soak);
    Control* const control = node ? node->GetTMController() : nullptr;
    if (!control || control->NumKeys() < 2) return;
    AsUser([&] {
        if (soak.play.choices.Chance()) {
            control->DeleteKeyByIndex(soak.play.choices.Below(control->NumKeys()));
        } else {
            control->DeleteTime(Interval(control->GetKeyTime(0), AnyTick(soak)), TIME_INCRIGHT);
        }
    });
}

// The user has the Core's routines and the undo stream for himself only while no hold is open.
void DeleteSelected(Soak& soak) {
    if (!theHold.Holding()) soak.play.Session().DeleteSelected();
}

void Redo(Soak& soak) {
    soak.since.redone = soak.play.Session().Redo();
    soak.Follow();
}

void UndoAndRedo(Soak& soak) {
    int undone = 0;
    for (int most = soak.play.choices.Below(6); undone < most && soak.play.Session().Undo();
         ++undone)
        soak.Follow();
    for (; undone > 0; --undone)
        Redo(soak);
}

// Of two nodes of one plug-in's that bear one name, and of two on one scene node, a file keeps one.
bool HasDoubles(Soak& soak) {
    std::set<std::string> names;
    std::set<std::uint32_t> handles;
    std::size_t count = 0;
    for (play::Rig& rig : soak.play.rigs) {
        for (TVL::CoreNode* node : rig.Nodes()) {
            INode* const host = static_cast<CMAXNode*>(node)->HostNode();
            names.insert(rig.Name() + node->GetNodeName());
            handles.insert(host ? host->GetHandle() : 0);
            ++count;
        }
    }
    return names.size() < count || handles.size() < count;
}

// What a Core that threw while it loaded has not taken waits for the next opening.
bool HasUnclaimedTags() {
    return std::ranges::any_of(headless::Nodes(), [](const headless::NodeView& node) {
        const auto tag = node.userProperties.find("TVL_tag");
        return tag != node.userProperties.end() && !tag->second.empty();
    });
}

void SaveAndOpen(Soak& soak) {
    soak.play.Settle();
    soak.play.leftNoRecord = true;
    if (theHold.Holding() || HasDoubles(soak)) return;
    const bool isPlain = !soak.armed && !HasUnclaimedTags();
    const std::string file = (soak.play.world.Folder() / "a.scene").string();
    if (!soak.play.Session().SaveScene(file).error.empty())
        return soak.Fail(isPlain ? "a save was refused" : "");
    const Look saved = soak.Present();
    if (!soak.play.Session().OpenScene(file).error.empty()) return soak.Fail("no scene opened");
    const Look opened = soak.Present();
    if (!isPlain || !AttachedCore()) return;
    if (opened.scene != saved.scene) soak.Fail("a scene that was saved is another when opened");
    if (opened.nodes != saved.nodes) soak.Fail("a scene that was saved has lost nodes of the Core");
}

void Arm(Soak& soak) {
    const std::span<const play::Act> acts = play::Acts();
    soak.armed = &soak.play.choices.OneOf(acts);
    soak.wait = soak.play.choices.Below(6);
}

void Reset(Soak& soak) {
    soak.play.leftNoRecord = true;
    soak.play.Session().Reset();
}

void Settle(Soak& soak) {
    soak.play.Settle();
    soak.play.world.Core().isRunning = false;
}

struct UserStep {
    const char* name;
    int often;  // 0: rarely, since it ends the undo stack or all that went before
    void (*run)(Soak&);
};

constexpr UserStep kUserSteps[] = {
    {"undo", 4, [](Soak& soak) { soak.play.Session().Undo(); }},
    {"redo", 4, Redo},
    {"undo and redo several", 1, UndoAndRedo},
    {"user shifts a node", 1, Shift},
    {"user scales a node", 1, Scale},
    {"user turns a node", 1, Turn},
    {"user hangs a node below another", 2, HangBelow},
    {"user adds a node", 1, AddNode},
    {"user picks a node", 2, PickNode},
    {"user hides a node", 1, Hide},
    {"user deletes keys", 2, DeleteKeys},
    {"user deletes what is picked", 1, DeleteSelected},
    {"user sets the time", 1, [](Soak& soak) { soak.play.Session().SetTime(AnyTick(soak)); }},
    {"user opens the Core", 1, [](Soak& soak) { soak.play.Session().PressButton(StartButton); }},
    {"at the next moment", 2, Arm},
    {"settle", 4, Settle},
    {"save and open", 0, SaveAndOpen},
    {"reset", 0, Reset},
};

// How often a Core does what it does more, or less, than once in a while.
int Often(const play::Act& act) {
    struct {
        const char* name;
        int often;
    } constexpr kOften[] = {
        {"begin group", 5},   {"end group", 5},   {"create helper", 4},
        {"create lens", 2},   {"write", 10},      {"begin recording", 2},
        {"throw", -1},        {"merge", 0},       {"save", 0},
        {"open", 0},          {"new scene", 0},   {"flush", 0},
        {"detach", 0},        {"convert all", 0}, {"run or stop", 0},
        {"change parent", 3}, {"attach", 2},
    };
    for (const auto& [name, often] : kOften)
        if (std::string_view(act.name) == name) return often;
    return 1;
}

struct Repertoire {
    std::vector<Step> usual;
    std::vector<Step> rare;

    void Add(int often, const Step& step) {
        if (often == 0) rare.push_back(step);
        for (; often > 0; --often)
            usual.push_back(step);
    }
};

const Repertoire& All() {
    static const Repertoire all = [] {
        Repertoire made;
        for (const UserStep& step : kUserSteps)
            made.Add(step.often, {step.name, step.run});
        for (const play::Act& act : play::Acts())
            made.Add(Often(act), {act.name, [&act](Soak& soak) { soak.play.Do(act); }});
        return made;
    }();
    return all;
}

}  // namespace

// The first byte chooses; a step beyond the usual ones is a rare one, which the second chooses.
const Step& StepOf(std::span<const std::uint8_t> bytes) {
    const auto& [usual, rare] = All();
    const std::size_t choice = bytes[0] % (usual.size() + 1);
    return choice < usual.size() ? usual[choice] : rare[bytes[1] % rare.size()];
}

}  // namespace soak
