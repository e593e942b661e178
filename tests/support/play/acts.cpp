#include "controllers/conversion.h"
#include "measures/host_clock.h"
#include "nodes/node_deletion.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/support/play/play.h"

namespace play {
namespace {

using TVL::CoreNode;
using enum By;

// The Core's own undo: it moves one number of the Core's.
class Chunk final : public TVL::CUndo {
  public:
    Chunk(Play& play, int before) : play_(play), other_(before) { ++play_.chunksAlive; }
    ~Chunk() override { --play_.chunksAlive; }
    void Undo(bool) override { Swap("undone"); }
    void Redo() override { Swap("redone"); }
    void Release() override {
        Play& play = play_;
        delete this;
        play.Meet("released");
    }

  private:
    void Swap(const char* moment) {
        play_.During(moment, [this] { std::swap(play_.value, other_); });
    }

    Play& play_;
    int other_;
};

// Does something with one of the Core's nodes, if there is any.
std::function<void(Play&)> OnNode(void (*work)(Play&, CoreNode&)) {
    return [work](Play& play) {
        if (CoreNode* const node = play.AnyNode()) work(play, *node);
    };
}

// The adaptor records what becomes of its nodes in a group, if that has a hold.
void NoteWhatIsUnrecorded(Play& play) {
    if (!play.Adaptor().IsHoldingUndo() || !theHold.Holding()) play.leftNoRecord = true;
}

// Seconds of whole and of half frames around 0.
double AnyTime(Play& play) {
    return (play.choices.Below(24) - 4) / 60.0;
}

// A place in whole decimetres, scaled and mirrored at times.
TVL::CMatrix4 AnyPose(Play& play) {
    constexpr double kScales[] = {1, 1, 1, -1, 2, 0.5};
    constexpr double kUnit = 1 / 39.37;  // the length of a row of an unscaled node
    TVL::CMatrix4 pose{{{kUnit * play.choices.OneOf(kScales), 0, 0, 0},
                        {0, 0, -kUnit, 0},
                        {0, kUnit, 0, 0},
                        {0, 0, 0, 1}}};
    for (int column = 0; column < 3; ++column)
        pose[3][column] = play.choices.Below(20) / 10.0;
    return pose;
}

// Groups, recordings, keyboard -------------------------------------------------------------------

// What a cancel brings back of a deletion by the user the host deletes all the same.
void CancelGroup(Play& play) {
    if (DeletionInProgress().deletingNodes)
        for (const auto& [number, node] : AdaptorNodes().nodes)
            play.loose.insert(node->NodeName());
    play.Adaptor().CancelUndoGroup();
}

void AddChunk(Play& play) {
    const int before = play.value++;
    if (play.Adaptor().AddUndoChunk(new Chunk(play, before)) != 0) play.leftNoRecord = true;
}

void BeginRecording(Play& play) {
    NoteWhatIsUnrecorded(play);
    ++play.recordings;
    play.Adaptor().BeginRecording({&play.choices.OneOf(play.rigs)});
}

void BeginUnkeyed(Play& play) {
    ++play.recordings;
    play.Adaptor().BeginRecordingUnkeyed({});
}

void EndRecording(Play& play) {
    if (play.recordings > 0) --play.recordings;
    play.Adaptor().EndRecording();
}

void RequestFocus(Play& play) {
    ++play.focuses;
    play.Adaptor().RequestFocus();
}

void RestoreFocus(Play& play) {
    if (play.focuses == 0) return;
    --play.focuses;
    play.Adaptor().RestoreFocus();
}

// Nobody but the adaptor can end what the Core has opened in this call.
void Throw(Play& play) {
    play.Adaptor().BeginUndoGroup(kThrownOut);
    play.Adaptor().BeginRecordingUnkeyed({});
    play.Adaptor().RequestFocus();
    throw std::runtime_error(kThrownOut);
}

// Nodes ------------------------------------------------------------------------------------------

template <bool kIsLens>
void Create(Play& play) {
    if (SceneNodes().size() >= kLargestScene) return;
    NoteWhatIsUnrecorded(play);
    Rig& rig = play.choices.OneOf(play.rigs);
    CoreNode* const parent = play.choices.Chance() ? play.AnyNode() : nullptr;
    const std::string name = play.NewName();
    const bool isTold = play.Adaptor().IsHoldingUndo();
    TVL::CMesh triangle;
    triangle.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    triangle.faces = {{0, 1, 2}};
    TVL::CNode* const node =
        kIsLens ? play.Adaptor().CreateLensNode(&rig, name, parent, &rig)
                : play.Adaptor().CreateHelperNode(&rig, name, parent, triangle, &rig);
    const bool isStillTold = play.Adaptor().IsHoldingUndo();
    if (!isTold || !isStillTold) rig.Forget(node);
    if (isTold && !isStillTold) play.loose.insert(name);
}

void Claim(Play& play, CoreNode& node) {
    TVL::CNode* const found = play.choices.Chance() ? node.GetParent() : node.GetChild(0);
    if (!found) return;
    play.leftNoRecord = true;
    Rig& rig = play.choices.OneOf(play.rigs);
    const std::string name = play.NewName();
    play.loose.insert(name);
    rig.Claim(static_cast<CoreNode*>(found), name);
}

template <bool kWithHostNode>
void Delete(Play& play, CoreNode& node) {
    NoteWhatIsUnrecorded(play);
    if (!play.Adaptor().IsHoldingUndo()) play.ExcuseGoneNodes();
    play.OwnerOf(&node).Delete(&node, kWithHostNode);
}

void ChangeParent(Play& play, CoreNode& node) {
    node.SetParent(play.choices.Below(4) == 3 ? nullptr : play.AnyNode());
}

void Clone(Play&, CoreNode& node) {
    if (SceneNodes().size() >= kLargestScene) return;
    if (CoreNode* const copy = node.Clone(false)) copy->Destroy();
}

// Keys -------------------------------------------------------------------------------------------

void Acquire(Play& play, CoreNode& node) {
    if (play.lent.size() >= 8) return;
    const double seconds = AnyTime(play);
    if (TVL::CSnapshot* const snapshot = node.AcquireSnapshot(seconds))
        play.lent.push_back({&node, snapshot, seconds});
}

// What was written with a controller of the adaptor's is there, in animate mode as a key. Below a
// parent it passes through that one's inverse, which there may be none of.
void CheckWritten(Play& play, TVL::CSnapshot& snapshot, INode& host, const TVL::CMatrix4& pose) {
    if (host.GetTMController()->ClassID() != TransformControl::kClassID) return;
    const TimeValue ticks = SnapshotTicks(snapshot.GetTime());
    if (Animating() && host.GetTMController()->GetKeyIndex(ticks) < 0)
        play.Fail("a write in animate mode made no key");
    if (!host.GetParentNode()->IsRootNode()) return;
    const TVL::CMatrix4 read = snapshot.GetWorldTransform();
    for (int index = 0; index < 16; ++index)
        if (std::abs(read[index / 4][index % 4] - pose[index / 4][index % 4]) > 1e-4)
            return play.Fail("a pose is not read back");
}

void Write(Play& play, CoreNode& node) {
    TVL::CSnapshot* const snapshot = node.AcquireSnapshot(AnyTime(play));
    if (!snapshot) return;
    const TVL::CMatrix4 pose = AnyPose(play);
    if (play.choices.Chance())
        snapshot->SetWorldTransform(pose);
    else
        snapshot->SetLocalTransform(pose);
    CheckWritten(play, *snapshot, *play.Behind(&node)->HostNode(), pose);
    node.ReleaseSnapshot(snapshot);
}

void WriteLens(Play& play, CoreNode& node) {
    TVL::CSnapshot_Lens* const lens = node.AcquireLensSnapshot(AnyTime(play));
    if (!lens) return;
    lens->SetFieldOfView(20 + play.choices.Below(60));
    node.ReleaseLensSnapshot(lens);
}

// The scene --------------------------------------------------------------------------------------

void Merge(Play& play) {
    if (SceneNodes().size() > kLargestScene / 2) return;
    play.leftNoRecord = true;
    play.ExcuseGoneNodes();
    for (TVL::CNode* node : play.Adaptor().MergeModels(play.AnyFile()))
        if (node) static_cast<CoreNode*>(node)->Destroy();
}

template <bool kAttaches>
void PressAttach(Play& play) {
    if ((AttachedCore() != nullptr) == kAttaches) return;
    play.leftNoRecord = true;
    AttachPanel().Press();
}

const Act kActs[] = {
    {"begin group", [](Play& play) { play.Adaptor().BeginUndoGroup("group"); }, 5},
    {"end group", [](Play& play) { play.Adaptor().EndUndoGroup(); }, 5},
    {"cancel group", CancelGroup},
    {"add chunk", AddChunk},
    {"begin recording", BeginRecording, 2},
    {"begin recording unkeyed", BeginUnkeyed},
    {"end recording", EndRecording},
    {"request focus", RequestFocus},
    {"restore focus", RestoreFocus},
    {"create helper", Create<false>, 4},
    {"create lens", Create<true>, 2},
    {"claim", OnNode(Claim)},
    {"delete", OnNode(Delete<true>)},
    {"delete, scene node stays", OnNode(Delete<false>)},
    {"change parent", OnNode(ChangeParent), 3},
    {"rename", OnNode([](Play& play, CoreNode& node) { node.SetName(play.NewName()); })},
    {"clone", OnNode(Clone)},
    {"select", OnNode([](Play&, CoreNode& node) { node.Select(); })},
    {"acquire", OnNode(Acquire)},
    {"write", OnNode(Write), 10},
    {"write lens", OnNode(WriteLens)},
    {"release", [](Play& play) { play.ReleaseLast(); }},
    {"delete animation",
     OnNode([](Play& play, CoreNode& node) { node.DeleteAnimationFrom(AnyTime(play)); })},
    {"convert all", [](Play&) { ConvertAllControllers(); }, 0},
    {"run or stop", [](Play& play) { play.world.Core().isRunning ^= true; }, 0},
    {"set time", [](Play& play) { play.Adaptor().SetCurrentTime(AnyTime(play)); }},
    {"undo", [](Play& play) { play.Adaptor().PerformUndo(); }},
    {"flush", [](Play& play) { play.Unrecorded().Adaptor().FlushUndoBuffer(); }, 0},
    {"merge", Merge, 0},
    {"throw", Throw, -1},
    {"save", [](Play& play) { play.Unrecorded().Session().SaveScene(play.AnyFile()); }, 0, kUser},
    {"open", [](Play& play) { play.Unrecorded().Session().OpenScene(play.AnyFile()); }, 0, kUser},
    {"new scene", [](Play& play) { play.Unrecorded().Session().NewScene(); }, 0, kUser},
    {"detach", PressAttach<false>, 0, kUser},
    {"attach", PressAttach<true>, 2, kUser},
};

}  // namespace

std::span<const Act> Acts() {
    return kActs;
}

}  // namespace play
