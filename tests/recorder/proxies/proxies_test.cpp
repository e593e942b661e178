#include <array>
#include <fstream>
#include <functional>
#include <set>

#include "headless/primitives.h"
#include "host/interface.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/support/play/well_formed.h"
#include "tests/support/trace.h"
#include "tests/support/world.h"
#include "tvl/ids.h"

// What a Core sees with the flight recorder between it and the adaptor is what it sees without.
namespace {

using TVL::CNode;
using TVL::CoreNode;

// What a Core was answered, and what it heard, in words.
class Said {
  public:
    template <class... Values>
    void operator()(const Values&... values) {
        (text_ << ... << values) << '\n';
    }
    void Matrix(const TVL::CMatrix4& matrix) {
        for (const auto& row : matrix.rows)
            (*this)(row[0], ' ', row[1], ' ', row[2], ' ', row[3]);
    }
    std::string Text() const { return text_.str(); }

  private:
    std::ostringstream text_;
};

// An element of the Core that owns nodes and listens to them.
class Rig final : public TVL::CoreElement, public TVL::NodeListener {
  public:
    explicit Rig(Said& said) : said_(said) { plugin = &record; }
    std::vector<int> ListExtensions() override { return {TVL::kSceneBeingSaved}; }
    std::intptr_t HandleExtension(int id, void* argument) override {
        said_("asked ", id);
        if (id == TVL::kSceneBeingSaved)
            static_cast<XMLNode*>(argument)->AddChild(XMLNode("masternode", "told"));
        if (onAsked) onAsked();
        return 7;
    }
    void OnNodeRemoved(CNode* node) override { Hear("removed", node); }
    void OnNodeRestored(CNode* node) override { Hear("restored", node); }

    TVL::PluginRecord record{"Rig"};
    std::function<void(CoreNode&)> onHeard;
    std::function<void()> onAsked;

  private:
    void Hear(const char* what, CNode* node) {
        said_(what, ' ', node->GetNodeName());
        if (onHeard) onHeard(static_cast<CoreNode&>(*node));
    }

    Said& said_;
};

struct Scene {
    World& world;
    Said& said;
    Rig rig{said};
    TVL::AdaptorInterface& adaptor = world.Adaptor();

    CoreNode& Helper(const char* name, CNode* parent = nullptr) {
        TVL::CMesh mesh;
        mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        mesh.faces = {0, 1, 2};
        return static_cast<CoreNode&>(*adaptor.CreateHelperNode(&rig, name, parent, mesh, nullptr));
    }
    CoreNode& Above(CoreNode& node) { return static_cast<CoreNode&>(*node.GetParent()); }
    void Step(const char* name, const std::function<void()>& work) {
        adaptor.BeginUndoGroup(name);
        work();
        said(adaptor.EndUndoGroup());
    }
};

// Things that a Core does ------------------------------------------------------------------------

void AskExtensions(Scene& scene) {
    CoreNode& hip = scene.Helper("Hip");
    CoreNode& knee = scene.Helper("Knee", &hip);
    CoreNode& above = scene.Above(knee);
    scene.said(hip.HandleExtension(TVL::kIsSameNode, static_cast<CoreNode*>(&above)));
    scene.said(hip.HandleExtension(TVL::kIsSameNode, static_cast<CoreNode*>(&knee)));
    scene.said(hip.HandleExtension(TVL::kBeginSelection, nullptr));
    scene.said(hip.HandleExtension(TVL::kEndSelection, nullptr), hip.HandleExtension(999, nullptr));
    for (CoreNode* parent : {&knee, static_cast<CoreNode*>(nullptr)}) {
        auto* const copy =
            reinterpret_cast<CoreNode*>(hip.HandleExtension(TVL::kCloneBelow, parent));
        CNode* const child = copy->GetChild(0);
        scene.said(copy->GetNodeName(), copy->IsSnapshot(), child->GetNodeName());
        scene.said(copy->GetParent() ? copy->GetParent()->GetNodeName() : "at the top");
        copy->ReleaseNode(child);
        copy->Destroy();
    }
    for (const int id : knee.ListExtensions())
        scene.said(id, knee.HasExtension(id), knee.HasExtension(TVL::kUseHostController));
    scene.said(above.IsSameNode(&hip), above.IsSameNode(nullptr));
    above.Destroy();
}

void NameAndClaim(Scene& scene) {
    CoreNode& hip = scene.Helper("Hip");
    CoreNode& knee = scene.Helper("Knee", &hip);
    CoreNode& above = scene.Above(knee);
    scene.said(above.GetNodeName(), above.Claim(&scene.rig, "Again") == nullptr);
    hip.Unclaim();
    scene.said(hip.GetNodeName(), hip.IsSnapshot(), scene.adaptor.FindNode(&scene.rig, "Hip"));
    scene.rig.record.name = "Other";
    CoreNode* const again = above.Claim(&scene.rig, "Again");
    scene.said(again->GetNodeName(), again->GetName(), scene.Helper("Toe").GetName());
    scene.said(scene.adaptor.FindNode(&scene.rig, "Again") == again);
    scene.said(scene.adaptor.GetNodes(&scene.rig).size(), scene.adaptor.GetNodes(nullptr).size());
    again->SetListener(&scene.rig);
    scene.Step("Delete", [&] { again->Delete(true); });
    scene.adaptor.PerformUndo();
    scene.said(scene.adaptor.FindNode(&scene.rig, "Again") == again);
    again->SetListener(nullptr);
    scene.world.Session().Redo();
    for (CoreNode* node : {&above, &hip})
        node->Destroy();
}

// The node dies where the record of its creation is dropped, and another one may come to be where
// it was.
void MakeAndForget(Scene& scene) {
    for (int round = 0; round < 20; ++round) {
        scene.Step("Make",
                   [&] { scene.adaptor.CreateLensNode(&scene.rig, "Lens", nullptr, &scene.rig); });
        scene.adaptor.PerformUndo();
        scene.adaptor.FlushUndoBuffer();
        scene.said(scene.adaptor.GetNodes(&scene.rig).size());
        scene.said(scene.Helper("Other").GetNodeName());
    }
}

void EndWhatIsBeingMade(Scene& scene) {
    void (*const ends[])(CoreNode&) = {[](CoreNode& node) { node.Destroy(); },
                                       [](CoreNode& node) { node.Delete(true); },
                                       [](CoreNode& node) { node.Unclaim(); }};
    for (const auto end : ends) {
        CoreNode* heard = nullptr;
        scene.rig.onHeard = [&](CoreNode& node) {
            if (!std::exchange(heard, &node)) end(node);
        };
        scene.Step("Make", [&] {
            CNode* const made =
                scene.adaptor.CreateLensNode(&scene.rig, "Lens", nullptr, &scene.rig);
            scene.said(made ? made->GetNodeName() : "none", made == heard);
        });
        scene.rig.onHeard = nullptr;
        scene.said(scene.adaptor.GetNodes(&scene.rig).size());
    }
}

void LendSnapshots(Scene& scene) {
    CoreNode& hip = scene.Helper("Hip");
    TVL::CSnapshot* const one = hip.AcquireSnapshot(0.5);
    TVL::CSnapshot* const other = hip.AcquireSnapshot(1);
    TVL::CMatrix4 pose = one->GetWorldTransform();
    pose[3][1] = 2;
    one->SetWorldTransform(pose);
    scene.said.Matrix(other->GetLocalTransform());
    other->SetLocalTransform(TVL::CMatrix4::Identity());
    scene.said.Matrix(one->GetWorldTransform());
    scene.said(one == other, one->GetTime(), other->GetTime(), one->HasExtension(1),
               one->HandleExtension(1, nullptr));
    hip.ReleaseSnapshot(one);
    hip.ReleaseSnapshot(nullptr);
    scene.said(hip.AcquireSnapshot(2) == one, one->GetTime());
    hip.ReleaseSnapshot(other);

    TVL::CSnapshot_Helper* const helper = hip.AcquireHelperSnapshot();
    TVL::CMesh larger;
    larger.vertices = {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}};
    larger.faces = {0, 1, 2};
    helper->SetMesh(larger);
    helper->SetColor(1, 0.5F, 0);
    helper->SetWireframe(true);
    helper->SetBackfaceCull(false);
    hip.ReleaseHelperSnapshot(helper);

    TVL::CSnapshot_Mesh* const mesh = hip.AcquireMeshSnapshot(0);
    double distance = -1;
    std::array<double, 3> normal{};
    scene.said(mesh->IntersectRay({1, 1, 5}, {0, 0, -1}, &distance, &normal), distance, normal[2],
               mesh->IntersectRay({9, 9, 5}, {0, 0, -1}, nullptr, nullptr));
    scene.said(mesh->GetMesh().vertices[1][0], mesh->GetMesh().faces.size());
    mesh->SetMesh({});
    scene.said(mesh->GetMesh().vertices.size(), hip.AcquireLensSnapshot(0));
    hip.ReleaseMeshSnapshot(mesh);

    auto& camera =
        static_cast<CoreNode&>(*scene.adaptor.CreateLensNode(&scene.rig, "Lens", nullptr, nullptr));
    TVL::CSnapshot_Lens* const lens = camera.AcquireLensSnapshot(0.25);
    lens->SetFieldOfView(30);
    lens->SetFieldOfViewType(1);
    lens->SetTargetDistance(12);
    scene.said(lens->GetFieldOfView(), ' ', lens->GetFieldOfViewType(), ' ',
               lens->GetTargetDistance(), ' ', lens->GetTime());
    scene.said.Matrix(lens->GetLensTransform());
    camera.ReleaseLensSnapshot(lens);

    // What is still out outlives its node.
    hip.Destroy();
    scene.said.Matrix(one->GetWorldTransform());
    one->SetWorldTransform(pose);
    scene.said(one->GetTime());
}

void FollowCurves(Scene& scene) {
    const auto curve = headless::StraightLines({{0, 0, 0}, {4, 0, 0}});
    Interface& host = *GetCOREInterface();
    host.CreateObjectNode(headless::NewSplines({curve, curve}))->SetName("Path");
    CoreNode& top = scene.Helper("Top");
    host.GetRootNode()->GetChildNode(1)->AttachChild(host.GetRootNode()->GetChildNode(0), 1);
    auto& path = static_cast<CoreNode&>(*top.GetChild(0));
    TVL::CSnapshot_Shape* const shape = path.AcquireShapeSnapshot(0);
    shape->SetCurve(1);
    scene.said(shape->GetCurveCount(), shape->GetCurve(), shape->GetCurveLength(),
               shape->GetCurvePoint(0.5)[0], shape->GetCurveTangent(0.5)[0]);
    path.ReleaseShapeSnapshot(shape);
    top.ReleaseNode(&path);
}

void HideAndMove(Scene& scene) {
    CoreNode& hip = scene.Helper("Hip");
    CoreNode& knee = scene.Helper("Knee");
    knee.SetParent(&hip);
    hip.Hide();
    scene.said(hip.IsVisible(), hip.GetChildCount(), hip.GetChild(3));
    hip.Show();
    hip.Select();
    hip.SetName("Shown");
    knee.DeleteAnimationFrom(1);
    knee.SetParent(nullptr);
    scene.said(hip.IsVisible(), hip.GetChildCount(), hip.GetName(), hip.GetNodeName());

    // A snapshot node that deletes nothing, since another element's node led to it, and one that
    // does.
    Rig other(scene.said);
    auto& theirs = static_cast<CoreNode&>(
        *scene.adaptor.CreateHelperNode(&other, "Theirs", &hip, {}, nullptr));
    CoreNode& reached = scene.Above(theirs);
    reached.Delete(true);
    scene.said(reached.GetName(), reached.GetChildCount());
    reached.Destroy();
    knee.SetParent(&hip);
    scene.Above(knee).Delete(true);
    scene.said(hip.GetName(), knee.GetName());
    theirs.Destroy();
}

void AskTheAdaptor(Scene& scene) {
    TVL::AdaptorInterface& adaptor = scene.adaptor;
    scene.said(adaptor.GetVersion(), adaptor.GetName(), adaptor.GetShortName(),
               adaptor.GetPlatformName(), adaptor.GetPlatformVersion(),
               adaptor.GetPlatformWindow() != nullptr);
    scene.said(adaptor.createMesh(nullptr, "none"), adaptor.GetOptionsPanel().Write());
    adaptor.SetAnimationRange({0, 3});
    adaptor.SetCurrentTime(1.5);
    scene.said(adaptor.GetCurrentTime(), adaptor.GetAnimationRange().second, adaptor.GetFrameRate(),
               adaptor.GetFrameDuration());
    adaptor.ForceRedraw();
    scene.said(adaptor.EndUndoGroup(), adaptor.AddUndoChunk(nullptr), adaptor.FlushUndoBuffer());
    scene.said(adaptor.SetLog(nullptr), adaptor.SetErrorCode(nullptr));
    TVL::Log log;
    TVL::ErrorCode codes;
    adaptor.SetLog(&log);
    adaptor.SetErrorCode(&codes);
    scene.said(TVL::Log::instance == &log, TVL::ErrorCode::instance == &codes);
    scene.said(adaptor.ClearLog(), adaptor.ClearErrorCode());
    scene.said(log.GetBufferedText().size() > 100, codes.HasIdentifier("NOTFOUND"));
}

void BeSaved(Scene& scene) {
    Rig other(scene.said);
    scene.Helper("Hip");
    auto& theirs = static_cast<CoreNode&>(
        *scene.adaptor.CreateHelperNode(&other, "Theirs", nullptr, {}, nullptr));
    other.onAsked = [&] { scene.rig.record.name = "Renamed"; };
    const std::string file = (scene.world.Folder() / "a.scene").string();
    scene.said(scene.world.Session().SaveScene(file).error);
    std::ostringstream saved;
    saved << std::ifstream(file, std::ios::binary).rdbuf();
    scene.said(saved.str().find("<name>Renamed</name>") != std::string::npos);
    theirs.Destroy();
    scene.world.Session().OpenScene(file);
    scene.said(scene.world.Core().state.Write());
}

// Both sides of the net.
struct Ear final : TVL::Util::MessageNode {
    Ear(Said& s, const char* nodeName) : MessageNode(nodeName), said(s) {}
    ~Ear() override { said("gone: ", GetListenerCount()); }
    void Receive(TVL::Util::Message* message, bool isBroadcast) override {
        sender = message->sender;
        said(message->id, message->text, message->wParam, isBroadcast, sender->GetName(),
             GetListenerCount(), message->lParam == sender, sender->IsListeningTo(this));
    }
    Said& said;
    MessageNode* sender = nullptr;
};

void SendMessages(Scene& scene) {
    auto button = std::make_unique<Ear>(scene.said, "button");
    scene.world.Core().otherButton = button.get();
    AttachPanel().Press();
    AttachPanel().Press();
    TVL::Util::MessageNode* const adaptor = button->sender;
    if (!adaptor) return scene.said("nobody listens");
    for (const char* name : {"first", "second"}) {
        Ear ear(scene.said, name);
        scene.said(ear.Listen(adaptor), ear.Listen(adaptor), ear.IsListeningTo(adaptor));
        scene.said(adaptor->Listen(&ear), adaptor->GetListeningCount(), ear.IsListener(adaptor));
        TVL::Util::Message press(TVL::kButtonPressed, "press", 3);
        button->Broadcast(&press);
        ear.Send(adaptor, &press);
        adaptor->Send(&ear, &press);
        adaptor->Broadcast(&press);
        scene.said(press.sender == adaptor, adaptor->StopListening(&ear));
        if (name[0] == 's') scene.said(ear.StopListening(adaptor));
    }
    button.reset();
    scene.world.Core().otherButton = nullptr;
    scene.world.SetOption(TVL::kOptimisedControllers, true);
    // The Core was attached anew meanwhile.
    scene.world.Adaptor().CreateHelperNode(&scene.rig, "Hip", nullptr, {}, nullptr);
    TVL::Util::Message nobodys(TVL::kButtonPressed, "press");
    adaptor->Receive(&nobodys, false);
    INode& hip = *GetCOREInterface()->GetRootNode()->GetChildNode(0);
    scene.said(hip.GetTMController()->ClassID().partA, nobodys.sender);
}

// With and without -------------------------------------------------------------------------------

struct Deed {
    const char* name;
    void (*run)(Scene&);
};
const Deed kDeeds[] = {
    {"extensions", AskExtensions},
    {"names", NameAndClaim},
    {"forgotten nodes", MakeAndForget},
    {"ended nodes", EndWhatIsBeingMade},
    {"snapshots", LendSnapshots},
    {"curves", FollowCurves},
    {"nodes", HideAndMove},
    {"state", BeSaved},
    {"messages", SendMessages},
    {"adaptor", AskTheAdaptor},  // the last: the log that is made anew outlives the adaptor
};

std::string Sequel(const Deed& deed, recorder::Recorder* recorder) {
    Said said;
    World world({.recorder = recorder});
    world.Core().onLeave = [&] { said("left"); };
    {
        Scene scene{world, said};
        deed.run(scene);
        world.Session().NewScene();
        world.Adaptor().FlushUndoBuffer();
    }
    world.ShutDown();
    return said.Text() + PlainTrace(world.Trace(), world.Folder().string());
}

TEST(Proxies, AreNotNoticed) {
    for (const Deed& deed : kDeeds) {
        SCOPED_TRACE(deed.name);
        play::Recorded recorded;
        EXPECT_EQ(Sequel(deed, &recorded.recorder), Sequel(deed, nullptr));
        EXPECT_EQ(recorded.form.TakeFaults(), std::vector<std::string>());
        EXPECT_GT(recorded.form.Calls(), 10U);
    }
}

// Of whom there is something to tell at the beginning of a segment, by kinds.
std::multiset<recorder::ObjectKind> Alive(const recorder::Recorder& recorder) {
    std::multiset<recorder::ObjectKind> kinds;
    recorder.TellObjects([&](recorder::ObjectId id, const recorder::ObjectFacts& facts) {
        kinds.insert(recorder::KindOf(id));
        const bool isOfSomebody = recorder::KindOf(id) == recorder::ObjectKind::kNode ||
                                  recorder::KindOf(id) == recorder::ObjectKind::kSnapshot;
        EXPECT_EQ(facts.of != 0, isOfSomebody);
    });
    return kinds;
}

struct NoChunk final : TVL::CUndo {
    void Undo(bool) override {}
    void Redo() override {}
};

TEST(Proxies, TellOfEverythingThatIsAlive) {
    using enum recorder::ObjectKind;
    using Kinds = std::multiset<recorder::ObjectKind>;
    play::Recorded recorded;
    Said said;
    World world({.recorder = &recorded.recorder});
    const Kinds always{kAdaptor, kCore, kCoreMessageNode, kAdaptorMessageNode};
    EXPECT_EQ(Alive(recorded.recorder), always);
    Scene scene{world, said};
    CoreNode& hip = scene.Helper("Hip");
    TVL::CSnapshot* const snapshot = hip.AcquireSnapshot(1);
    CNode* const child = scene.Helper("Knee", &hip).GetParent();
    scene.Step("Chunk", [&] { scene.adaptor.AddUndoChunk(new NoChunk); });
    Kinds now = always;
    now.insert({kNode, kNode, kNode, kSnapshot, kOwner, kChunk});
    EXPECT_EQ(Alive(recorded.recorder), now);
    hip.ReleaseSnapshot(snapshot);
    hip.ReleaseNode(child);
    scene.adaptor.FlushUndoBuffer();
    hip.Delete(true);
    now = always;
    now.insert({kNode, kOwner});
    EXPECT_EQ(Alive(recorded.recorder), now);
}

// As where a Core is attached again that has not left, or to another adaptor.
TEST(Proxies, OutliveAnotherAttachment) {
    play::Recorded recorded;
    Said said;
    World world({.recorder = &recorded.recorder});
    Scene scene{world, said};
    CoreNode& hip = scene.Helper("Hip");
    hip.SetListener(&scene.rig);
    PuppetCore second;
    CoreInterface* const other =
        recorded.recorder.Attach(&scene.adaptor, [&](auto*) { return &second; });
    scene.Step("Delete", [&] { hip.Delete(true); });
    recorded.recorder.Detach(other, [&](CoreInterface* core) { EXPECT_EQ(core, &second); });
    scene.adaptor.PerformUndo();
    EXPECT_EQ(said.Text(), "removed Hip\n0\nrestored Hip\n");
    EXPECT_EQ(hip.GetName(), "Rig_Hip");
}

// And it has no effect.
TEST(Proxies, TellWhatIsUsedAfterItsEnd) {
    play::Recorded recorded;
    Said said;
    World world({.recorder = &recorded.recorder});
    Scene scene{world, said};
    CoreNode& top = scene.Helper("Top");
    CoreNode& knee = scene.Helper("Knee", &top);
    void (*const ends[])(CoreNode&, CoreNode&) = {
        [](CoreNode& node, CoreNode&) { node.Destroy(); },
        [](CoreNode& node, CoreNode&) { node.Delete(true); },
        [](CoreNode& node, CoreNode& other) { other.ReleaseNode(&node); },
        [](CoreNode& node, CoreNode&) { node.Unclaim(), node.Delete(false); }};
    for (const auto end : ends) {
        CoreNode& hip = scene.Helper("Hip");
        TVL::CSnapshot* const snapshot = hip.AcquireSnapshot(1);
        hip.ReleaseSnapshot(snapshot);
        end(hip, knee);
        const std::size_t calls = recorded.form.Calls();
        EXPECT_EQ(hip.GetName(), "");
        EXPECT_EQ(hip.AcquireSnapshot(0), nullptr);
        EXPECT_EQ(hip.GetParent(), nullptr);
        EXPECT_EQ(hip.Claim(&scene.rig, "Hip"), nullptr);
        EXPECT_FALSE(knee.IsSameNode(&hip) || hip.IsSameNode(&hip));
        EXPECT_EQ(snapshot->GetTime(), 0);
        hip.ReleaseSnapshot(snapshot);
        knee.SetParent(&hip);
        knee.ReleaseNode(&hip);
        hip.Delete(true);
        hip.Destroy();
        EXPECT_EQ(recorded.form.Calls(), calls + 12);
        EXPECT_EQ(top.GetChildCount(), 1);
    }
    EXPECT_EQ(recorded.form.TakeFaults(), std::vector<std::string>());
    for (CoreNode* const node : {&knee, &top})
        node->Destroy();
}

}  // namespace
