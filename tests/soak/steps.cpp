#include <algorithm>
#include <set>

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

using play::Act;
using play::By;
using play::Play;

Soak& SoakOf(Play& play) {
    return static_cast<Soak&>(play);
}

TimeValue AnyTick(Play& play) {
    return 80 * (play.choices.Below(24) - 4);
}

// One undo step of the user's, who cannot work while a Core holds undo.
template <class Change>
void AsUser(Change change) {
    if (theHold.Holding()) return;
    theHold.Begin();
    change();
    theHold.Accept("user");
}

void Move(Play& play, const Matrix3& local) {
    INode* const node = play.AnySceneNode();
    if (!node) return;
    const TimeValue t = AnyTick(play);
    AsUser([&] {
        if (play.choices.Chance()) AnimateOn();
        node->SetNodeTM(t, local * node->GetNodeTM(t));
        AnimateOff();
    });
}

void Shift(Play& play) {
    Move(play, MovedBy({static_cast<float>(play.choices.Below(9)), 0, 1}));
}

// Flat and mirrored ones among them, which a parent's change has no inverse for.
void Scale(Play& play) {
    constexpr float kScales[] = {1, -1, 2, 0.5F, 0, 1e-6F};
    const Point3 factors{play.choices.OneOf(kScales), play.choices.OneOf(kScales), 1};
    Matrix3 scale;
    scale.Scale(factors, true);
    Move(play, scale);
}

bool IsBelow(INode* node, const INode* other) {
    while (node && node != other)
        node = node->GetParentNode();
    return node != nullptr;
}

void HangBelow(Play& play) {
    INode* const node = play.AnySceneNode();
    INode* const parent = play.choices.Chance() ? play.AnySceneNode() : nullptr;
    if (!node || (parent && IsBelow(parent, node))) return;
    AsUser([&] { (parent ? parent : GetCOREInterface()->GetRootNode())->AttachChild(node, 1); });
}

void AddNode(Play& play) {
    if (play::SceneNodes().size() >= play::kLargestScene) return;
    AsUser([&] {
        Object* const object = play.choices.Chance() ? GetCOREInterface()->CreateCameraObject(0)
                                                     : headless::NewSphere(1, 8);
        GetCOREInterface()->CreateObjectNode(object)->SetName("user");
    });
}

void PickNode(Play& play) {
    if (INode* const node = play.AnySceneNode())
        AsUser([&] { GetCOREInterface()->SelectNode(node, play.choices.Below(2)); });
}

void Hide(Play& play) {
    if (INode* const node = play.AnySceneNode()) AsUser([&] { node->Hide(play.choices.Chance()); });
}

// At least one key stays, since a table without any tells by its cached key what it is.
void DeleteKeys(Play& play) {
    INode* const node = play.AnySceneNode();
    Control* const control = node ? node->GetTMController() : nullptr;
    if (!control || control->NumKeys() < 2) return;
    AsUser([&] {
        if (play.choices.Chance())
            control->DeleteKeyByIndex(play.choices.Below(control->NumKeys()));
        else
            control->DeleteTime(Interval(control->GetKeyTime(0), AnyTick(play)), TIME_INCRIGHT);
    });
}

// The user has the Core's routines and the undo stream for himself only while no hold is open.
void DeleteSelected(Play& play) {
    if (!theHold.Holding()) play.Session().DeleteSelected();
}

void Redo(Play& play) {
    SoakOf(play).since.redone = play.Session().Redo();
    SoakOf(play).Follow();
}

void UndoAndRedo(Play& play) {
    int undone = 0;
    for (int most = play.choices.Below(6); undone < most && play.Session().Undo(); ++undone)
        SoakOf(play).Follow();
    for (; undone > 0; --undone)
        Redo(play);
}

// Of two nodes of one plug-in's that bear one name, and of two on one scene node, a file keeps one.
bool HasDoubles(Play& play) {
    std::set<std::string> names;
    std::set<std::uint32_t> handles;
    const std::vector<TVL::CoreNode*> nodes = play.AllNodes();
    for (TVL::CoreNode* node : nodes) {
        INode* const host = static_cast<CMAXNode*>(node)->HostNode();
        names.insert(play.OwnerOf(node).Name() + node->GetNodeName());
        handles.insert(host ? host->GetHandle() : 0);
    }
    return names.size() < nodes.size() || handles.size() < nodes.size();
}

// What a Core that threw while it loaded has not taken waits for the next opening.
bool HasUnclaimedTags() {
    return std::ranges::any_of(headless::Nodes(), [](const headless::NodeView& node) {
        const auto tag = node.userProperties.find("TVL_tag");
        return tag != node.userProperties.end() && !tag->second.empty();
    });
}

void SaveAndOpen(Play& play) {
    play.Settle();
    play.leftNoRecord = true;
    if (theHold.Holding() || HasDoubles(play)) return;
    const bool isPlain = !SoakOf(play).armed && !HasUnclaimedTags();
    const std::string file = play.File("a.scene");
    if (!play.Session().SaveScene(file).error.empty()) {
        if (isPlain) play.Fail("a save was refused");
        return;
    }
    const Look saved = SoakOf(play).Present();
    if (!play.Session().OpenScene(file).error.empty()) return play.Fail("no scene opened");
    const Look opened = SoakOf(play).Present();
    if (!isPlain || !AttachedCore()) return;
    if (opened.scene != saved.scene) play.Fail("a scene that was saved is another when opened");
    if (opened.nodes != saved.nodes) play.Fail("a scene that was saved has lost nodes of the Core");
}

void Arm(Play& play) {
    const std::span<const Act> acts = play::Acts();
    SoakOf(play).armed = &play.choices.OneOf(acts);
    SoakOf(play).wait = play.choices.Below(6);
}

void Reset(Play& play) {
    play.leftNoRecord = true;
    play.Session().Reset();
}

void Settle(Play& play) {
    play.Settle();
    play.world.Core().isRunning = false;
}

constexpr Act kUserSteps[] = {
    {"undo", [](Play& play) { play.Session().Undo(); }, 4, By::kUser},
    {"redo", Redo, 4, By::kUser},
    {"undo and redo several", UndoAndRedo, 1, By::kUser},
    {"user shifts a node", Shift, 1, By::kUser},
    {"user scales a node", Scale, 1, By::kUser},
    {"user turns a node", [](Play& play) { Move(play, TurnedAboutZ(play.choices.Below(12) * 30)); },
     1, By::kUser},
    {"user hangs a node below another", HangBelow, 2, By::kUser},
    {"user adds a node", AddNode, 1, By::kUser},
    {"user picks a node", PickNode, 2, By::kUser},
    {"user hides a node", Hide, 1, By::kUser},
    {"user deletes keys", DeleteKeys, 2, By::kUser},
    {"user deletes what is picked", DeleteSelected, 1, By::kUser},
    {"user sets the time", [](Play& play) { play.Session().SetTime(AnyTick(play)); }, 1, By::kUser},
    {"user opens the Core", [](Play& play) { play.Session().PressButton(StartButton); }, 1,
     By::kUser},
    {"at the next moment", Arm, 2, By::kUser},
    {"settle", Settle, 4, By::kUser},
    {"save and open", SaveAndOpen, 0, By::kUser},
    {"reset", Reset, 0, By::kUser},
};

struct Repertoire {
    std::vector<const Act*> usual;  // each as often as it is to come
    std::vector<const Act*> rare;

    Repertoire() {
        for (const std::span<const Act> acts : {std::span<const Act>(kUserSteps), play::Acts()})
            for (const Act& act : acts) {
                if (act.often == 0) rare.push_back(&act);
                for (int count = act.often; count > 0; --count)
                    usual.push_back(&act);
            }
    }
};

}  // namespace

// A step beyond the usual ones is a rare one, which the second byte chooses.
const Act& StepOf(std::string_view bytes) {
    static const Repertoire all;
    play::Choices choices(bytes);
    const auto choice =
        static_cast<std::size_t>(choices.Below(static_cast<int>(all.usual.size()) + 1));
    return choice < all.usual.size() ? *all.usual[choice] : *choices.OneOf(all.rare);
}

}  // namespace soak
