#include "headless/memory_chunks.h"
#include "headless/primitives.h"
#include "resources/resource_ids.h"
#include "tests/soak/soak.h"
#include "tests/support/matrices.h"

namespace soak {
namespace {

using play::Act;
using enum play::By;
using play::Play;

Soak& SoakOf(Play& play) {
    return static_cast<Soak&>(play);
}

TimeValue AnyTick(Play& play) {
    return 80 * (play.choices.Below(24) - 4);
}

// What the user changes ---------------------------------------------------------------------------

void Add(Play& play, INode*) {
    if (play::SceneNodes().size() >= play::kLargestScene) return;
    Interface& host = *GetCOREInterface();
    Object* const object =
        play.choices.Chance() ? host.CreateCameraObject(0) : headless::NewSphere(1, 8);
    host.CreateObjectNode(object)->SetName("user");
}

// Evaluating at another time than the present moves a cached key without a record, so that of a
// parent is not asked for there.
void Place(Play& play, INode* node, const Matrix3& local) {
    const bool isTop = node->GetParentNode()->IsRootNode();
    const TimeValue now = GetCOREInterface()->GetTime();
    if (play.choices.Chance()) AnimateOn();
    node->SetNodeTM(isTop ? AnyTick(play) : now, local * node->GetNodeTM(now));
    AnimateOff();
}

void Shift(Play& play, INode* node) {
    Place(play, node, MovedBy({static_cast<float>(play.choices.Below(9)), 0, 1}));
}

void Turn(Play& play, INode* node) {
    Place(play, node, TurnedAboutZ(play.choices.Below(12) * 30));
}

// Flat and mirrored ones among them, which a parent's change has no inverse for.
void Scale(Play& play, INode* node) {
    constexpr float kScales[] = {1, -1, 2, 0.5F, 0, 1e-6F};
    const Point3 factors{play.choices.OneOf(kScales), play.choices.OneOf(kScales), 1};
    Matrix3 scale;
    scale.Scale(factors, true);
    Place(play, node, scale);
}

bool IsBelow(INode* node, const INode* other) {
    while (node && node != other)
        node = node->GetParentNode();
    return node != nullptr;
}

void Hang(Play& play, INode* node) {
    INode* const parent = play.AnySceneNode();
    const int keepsPlace = play.choices.Below(4);
    if (IsBelow(parent, node))
        node->Detach(GetCOREInterface()->GetTime(), keepsPlace);
    else
        parent->AttachChild(node, keepsPlace);
}

// Another node's, which the two then share; one of ours, or one of the host's.
void SetController(Play& play, INode* node) {
    const int kind = play.choices.Below(3);
    const Class_ID id = kind == 1 ? TransformControl::kClassID : kPositionRotationScaleClassId;
    node->SetTMController(kind == 0 ? play.AnySceneNode()->GetTMController()
                                    : static_cast<Control*>(GetCOREInterface()->CreateInstance(
                                          CTRL_MATRIX3_CLASS_ID, id)));
}

// At least one key stays, since a table without any tells by its cached key what it is.
void DeleteKeys(Play& play, INode* node) {
    Control* const control = node->GetTMController();
    if (!control || control->NumKeys() < 2) return;
    if (play.choices.Chance())
        control->DeleteKeyByIndex(play.choices.Below(control->NumKeys()));
    else
        control->DeleteTime(Interval(control->GetKeyTime(0), AnyTick(play)), TIME_INCRIGHT);
}

void Clone(Play& play, INode* node) {
    if (play::SceneNodes().size() > play::kLargestScene / 2) return;
    INodeTab nodes;
    nodes.Append(1, &node);
    const bool withBranches = play.choices.Chance();
    GetCOREInterface()->CloneNodes(nodes, {1, 0, 0}, withBranches, NODE_COPY, nullptr, nullptr);
}

// Not from the Core, which hears of no deletion but that of what is picked.
void Delete(Play& play, INode* node) {
    if (FindAnnouncedNode(node)) return;
    if (!theHold.Holding()) play.ExcuseGoneNodes();
    GetCOREInterface()->DeleteNode(node);
}

void Label(Play& play, INode* node) {
    constexpr const char* kWords[] = {"", "hip", "knee"};
    const char* const word = play.choices.OneOf(kWords);
    if (play.choices.Chance()) return node->SetName(word);
    node->SetUserPropString(play.choices.OneOf(kWords), word);
}

void Show(Play& play, INode* node) {
    if (play.choices.Chance()) return node->Hide(play.choices.Chance());
    node->SetWireColor(static_cast<std::uint32_t>(play.choices.Below(9)));
}

void SetCamera(Play& play, INode* node) {
    if (node->GetObjectRef()->SuperClassID() != CAMERA_CLASS_ID) return;
    auto& camera = static_cast<CameraObject&>(*node->GetObjectRef());
    camera.SetFOVType(play.choices.Below(3));
    camera.SetConeState(play.choices.Below(2));
    camera.SetFOV(AnyTick(play), 1.0F / static_cast<float>(1 + play.choices.Below(5)));
}

void Pick(Play& play, INode* node) {
    if (play.choices.Below(4) == 0) return GetCOREInterface()->ClearNodeSelection();
    GetCOREInterface()->SelectNode(node, play.choices.Below(2));
}

void SetRange(Play& play, INode*) {
    GetCOREInterface()->SetAnimRange({0, 800 + AnyTick(play)});
}

// On a node of the scene; with none there the first alone can be made.
constexpr std::pair<const char*, void (*)(Play&, INode*)> kChanges[] = {
    {"add", Add},
    {"shift", Shift},
    {"turn", Turn},
    {"scale", Scale},
    {"hang", Hang},
    {"hang", Hang},
    {"set controller", SetController},
    {"delete keys", DeleteKeys},
    {"clone", Clone},
    {"delete", Delete},
    {"label", Label},
    {"show", Show},
    {"set camera", SetCamera},
    {"pick", Pick},
    {"pick", Pick},
    {"set range", SetRange}};

void MakeChanges(Play& play) {
    for (int left = 1 + play.choices.Below(3); left > 0; --left) {
        INode* const node = play.AnySceneNode();
        const auto& [name, make] = node ? play.choices.OneOf(kChanges) : kChanges[0];
        std::printf("  %s\n", name);
        make(play, node);
    }
}

// Undo -------------------------------------------------------------------------------------------

void Redo(Play& play) {
    SoakOf(play).since.redone = play.Session().Redo();
    SoakOf(play).Follow();
}

void UndoAndRedo(Play& play) {
    constexpr int kMosts[] = {1, 2, 3, 5, 1000};
    int undone = 0;
    for (int most = play.choices.OneOf(kMosts); undone < most && play.Session().Undo(); ++undone)
        SoakOf(play).Follow();
    for (; undone > 0; --undone)
        Redo(play);
}

// The controllers of the scene's nodes to the byte, their cached keys included.
using Controllers = std::vector<std::pair<Control*, std::vector<std::byte>>>;

Controllers ControllersNow() {
    const std::vector<INode*> nodes = play::SceneNodes();
    for (INode* node : nodes)
        node->GetNodeTM(GetCOREInterface()->GetTime());  // a second look evaluates nothing more
    Controllers now;
    for (INode* node : nodes)
        now.emplace_back(node->GetTMController(), headless::SavedBytes(*node->GetTMController()));
    return now;
}

void Expect(Play& play, const Controllers& expected, const char* fault) {
    if (ControllersNow() != expected) play.Fail(fault);
}

// The user works while no Core holds undo: in one step, which may be taken back and made again at
// once, in a hold that is cancelled, or where nothing is recorded.
void Work(Play& play) {
    enum { kUnrecorded, kCancelled, kTakenBack, kWays = 6 };
    if (theHold.Holding()) return;
    const int way = play.choices.Below(kWays);
    const std::size_t depth = play.Session().UndoLabels().size();
    const Controllers before = ControllersNow();
    if (way != kUnrecorded) theHold.Begin();
    MakeChanges(play);
    play.leftNoRecord |= way == kUnrecorded;
    if (!theHold.Holding()) return;
    const Controllers after = ControllersNow();
    if (way == kCancelled)
        theHold.Cancel();
    else
        theHold.Accept("user");
    const bool isAlone = !play.leftNoRecord;  // with no act of the Core's in it
    SoakOf(play).Follow();
    if (isAlone && way == kCancelled) Expect(play, before, "a cancel leaves a controller changed");
    if (!isAlone || way != kTakenBack || play.Session().UndoLabels().size() == depth) return;
    play.Session().Undo();
    SoakOf(play).Follow();
    Expect(play, before, "undo leaves a controller changed");
    Redo(play);
    Expect(play, after, "redo leaves a controller changed");
}

// The user has the Core's routines and the undo stream for himself only while no hold is open.
void DeleteSelected(Play& play) {
    if (!theHold.Holding()) play.Session().DeleteSelected();
}

// Of two nodes of one plug-in's that bear one name, and of two on one scene node, a file keeps one.
bool HasDoubles(Play& play) {
    std::set<std::string> names;
    std::set<std::uint32_t> handles;
    const std::vector<TVL::CoreNode*> nodes = play.AllNodes();
    for (TVL::CoreNode* node : nodes) {
        const CMAXNode* const real = play.Behind(node);
        INode* const host = real ? real->HostNode() : nullptr;
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
    play.Unrecorded().Settle();
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

void Settle(Play& play) {
    play.Settle();
    play.world.Core().isRunning = false;
}

const Act kUserSteps[] = {
    {"undo", [](Play& play) { play.Session().Undo(); }, 4, kUser},
    {"redo", Redo, 4, kUser},
    {"undo and redo several", UndoAndRedo, 1, kUser},
    {"user works", Work, 12, kUser},
    {"user deletes what is picked", DeleteSelected, 1, kUser},
    {"user sets the time", [](Play& play) { play.Session().SetTime(AnyTick(play)); }, 2, kUser},
    {"user opens the Core", [](Play& play) { play.Session().PressButton(TVL::kStartButton); }, 1,
     kUser},
    {"at the next moment", Arm, 2, kUser},
    {"settle", Settle, 4, kUser},
    {"save and open", SaveAndOpen, 0, kUser},
    {"reset", [](Play& play) { play.Unrecorded().Session().Reset(); }, 0, kUser},
};

// The usual acts, each as often as it is to come, or the rare ones.
std::vector<const Act*> Repertoire(bool isRare) {
    std::vector<const Act*> all;
    for (const std::span<const Act> acts : {std::span<const Act>(kUserSteps), play::Acts()})
        for (const Act& act : acts)
            for (int left = isRare ? act.often == 0 : act.often; left > 0; --left)
                all.push_back(&act);
    return all;
}

}  // namespace

// A step beyond the usual ones is a rare one, which the second byte chooses.
const Act& StepOf(std::string_view bytes) {
    static const std::vector<const Act*> usual = Repertoire(false);
    static const std::vector<const Act*> rare = Repertoire(true);
    play::Choices choices(bytes);
    const int choice = choices.Below(static_cast<int>(usual.size()) + 1);
    return choice < std::ssize(usual) ? *usual.begin()[choice] : *choices.OneOf(rare);
}

}  // namespace soak
