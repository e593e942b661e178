#include "nodes/node_lifetime.h"

#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "tests/nodes/node_test.h"

namespace {

class NodeLifetime : public NodeTest {
  protected:
    // Classes of the transform controller and of those of a camera's parameters.
    static std::vector<Class_ID> Controllers(const std::string& hostName) {
        std::vector<Class_ID> classes = {Host(hostName)->GetTMController()->ClassID()};
        Object* const object = Host(hostName)->GetObjectRef();
        Animatable* const parameters = object->NumSubs() > 0 ? object->SubAnim(0) : nullptr;
        for (int index = 0; parameters && index < parameters->NumSubs(); ++index)
            classes.push_back(parameters->SubAnim(index)->ClassID());
        return classes;
    }
};

TEST_F(NodeLifetime, BringsTheAdaptorsControllersIfItIsToUntilTheSceneNodeIsLeftAlone) {
    using Classes = std::vector<Class_ID>;
    const Classes hosts = {kPositionRotationScaleClassId, kLinearFloatClassId, kLinearFloatClassId};
    const Classes own = {TransformControl::kClassID, ScalarControl::kClassID,
                         ScalarControl::kClassID};
    Node* const camera = Camera("Cam");
    EXPECT_EQ(Controllers("Rig_Cam"), own);
    world.SetOption(TVL::kOptimisedControllers, false);
    Camera("Plain");
    EXPECT_EQ(Controllers("Rig_Plain"), hosts);
    Helper("Hip");
    EXPECT_EQ(Controllers("Rig_Hip"), Classes{hosts[0]});
    camera->Delete(false);
    EXPECT_EQ(Controllers("Rig_Cam"), hosts);
    EXPECT_EQ(Find("Cam"), nullptr);
}

TEST_F(NodeLifetime, NamesTheSceneNodeByItsOwnerWhoFindsTheFirstOfAName) {
    Plugin nameless("");
    nameless.plugin = nullptr;
    Node* const first = Helper("Joint", nullptr, Triangle());
    Node* const second = Camera("Joint", first);
    adaptor.CreateHelperNode(&other, "Joint", first, {}, nullptr);
    Node* const ownerless[] = {Core(adaptor.CreateLensNode(&nameless, "Cam", nullptr, nullptr)),
                               Core(adaptor.CreateHelperNode(nullptr, "Hip", nullptr, {}, {}))};
    EXPECT_EQ(Scene(), "Rig_Joint(Rig_Joint Other_Joint) _Cam _Hip");
    EXPECT_EQ(Find("Joint"), first);
    EXPECT_EQ(Find("Rig_Joint"), nullptr);
    EXPECT_EQ(adaptor.GetNodes(&rig), (std::vector<TVL::CNode*>{first, second}));
    EXPECT_EQ(adaptor.GetNodes(nullptr), std::vector<TVL::CNode*>{ownerless[1]});
    for (Node* node : ownerless)
        node->Destroy();

    // A helper is a triangle mesh with red wires.
    const auto& mesh = static_cast<TriObject*>(Host("Other_Joint")->GetObjectRef())->GetMesh();
    EXPECT_EQ(mesh.getNumFaces(), 0);
    EXPECT_EQ(mesh.getNumTVerts(), 1);
    EXPECT_EQ(Host("Other_Joint")->GetWireColor(), 0x0000FFU);
    EXPECT_EQ(TimesTraced("creating helper"), 3U);
    EXPECT_EQ(TimesTraced("meshname: Joint"), 2U);
    EXPECT_EQ(TimesTraced("parent: (NULL)") + TimesTraced("parent: Joint"), 3U);
}

TEST_F(NodeLifetime, EndsAtOnceOutsideAGroupAndATakenStepInOneLikeCreation) {
    InGroup("Make", [&] {
        Helper("Hip");
        Camera("Cam");
        adaptor.CreateLensNode(&rig, "Deaf", nullptr, nullptr);
    });
    Helper("Knee");
    Helper("Toe")->Delete(true);
    Node* const hip = Find("Hip");
    InGroup("Remove", [&] {
        hip->Delete(true);
        hip->Delete(true);  // not listed any more
    });
    listener.restored.clear();

    // What comes back is listed last, and a deletion that is undone heard of before its scene node
    // is there.
    const auto undo = [&] { return world.Session().Undo(); };
    const auto redo = [&] { return world.Session().Redo(); };
    const std::pair<std::function<bool()>, const char*> steps[] = {
        {nullptr, " +Hip +Cam -Hip: Cam Deaf Knee: Rig_Cam Rig_Deaf Rig_Knee"},
        {undo, " +Hip: Cam Deaf Knee Hip: Rig_Hip Rig_Cam Rig_Deaf Rig_Knee"},
        {undo, " -Cam -Hip: Knee: Rig_Knee"},
        {redo, " +Hip +Cam: Knee Hip Cam Deaf: Rig_Hip Rig_Cam Rig_Deaf Rig_Knee"},
        {redo, " -Hip: Knee Cam Deaf: Rig_Cam Rig_Deaf Rig_Knee"}};
    for (const auto& [step, state] : steps) {
        EXPECT_TRUE(!step || step());
        EXPECT_EQ(std::exchange(listener.heard, {}) + ":" + Listed() + ": " + Scene(), state);
    }
    // A helper gets its name later.
    EXPECT_EQ(listener.restored, (Names{"", "Mesh01", "Rig_Cam"}));

    // A new node is forgotten when its group is cancelled.
    adaptor.BeginUndoGroup("Try");
    Helper("New")->Delete(true);
    Helper("Toe");
    adaptor.CancelUndoGroup();
    EXPECT_EQ(listener.heard + ":" + Listed(), " +New -New +Toe -Toe +New -New: Knee Cam Deaf");
}

TEST_F(NodeLifetime, IsEndedByTheHostWhereTheUserDeletes) {
    Helper("Knee", Helper("Hip"));
    rig.onDeletion = [&] {
        Find("Hip")->Delete(true);
        ASSERT_NE(Host("Rig_Hip"), nullptr);
        Find("Knee")->Delete(true);
    };
    world.Session().Select({"Rig_Hip", "Rig_Knee"});
    world.Session().DeleteSelected();
    EXPECT_EQ(Listed() + Scene(), "");
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Scene(), "Rig_Hip*(Rig_Knee*)");
}

TEST_F(NodeLifetime, IsEndedThroughASnapshotNodeThatHasASourceOfTheSameOwner) {
    Node* const stranger = Core(adaptor.CreateHelperNode(&other, "Anchor", nullptr, {}, nullptr));
    Node* const hip = Helper("Hip", stranger);
    Node* const knee = Helper("Knee", hip);
    Node* const fromStranger = Core(stranger->GetChild(0));
    fromStranger->Delete(true);  // of the rig, reached from the other plug-in
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip(Rig_Knee))");
    Core(hip->GetChild(0))->Delete(true);
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip)");
    EXPECT_EQ(knee->GetName(), "");

    // A source that was given back counts with the owner that it had.
    Node* const viaReleased = Core(fromStranger->GetParent());
    fromStranger->Destroy();
    viaReleased->Delete(true);  // of the other plug-in, reached from the rig's
    viaReleased->Destroy();

    // Whatever has come to where it was.
    Node* const viaHip = Core(Helper("Toe", hip)->GetParent());
    Node* const again = Core(viaHip->GetChild(0));
    viaHip->Destroy();
    new CMAXNode(&other, "", nullptr, nullptr);
    again->Delete(true);
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip)");

    // Without an owner it always goes ahead.
    hip->Clone(false)->Delete(true);
    hip->Unclaim();
    EXPECT_TRUE(hip->IsSnapshot());
    hip->Delete(true);
    EXPECT_EQ(Listed() + ": " + Scene(), " Knee Toe: Other_Anchor");
}

TEST_F(NodeLifetime, LeavesSnapshotsThatAreOutWithoutANodeAndReportsThemInTheOrderOfThePools) {
    world.SetOption(TVL::kDynamicMeshes, true);
    Node* const eye = Camera("Eye");
    TVL::CSnapshot_Lens* const lens = eye->AcquireLensSnapshot(0);
    auto line = NodeOn(headless::NewSplines({headless::StraightLines({{}, {1, 0, 0}})}));
    TVL::CSnapshot_Shape* const shape = line->AcquireShapeSnapshot(0);
    TVL::CSnapshot_Mesh* const mesh = line->AcquireMeshSnapshot(0);
    TVL::CSnapshot_Helper* const look = line->AcquireHelperSnapshot();
    TVL::CSnapshot* const out = line->AcquireSnapshot(2);
    line->ReleaseSnapshot(line->AcquireSnapshot(3));
    const std::size_t before = Trace().size();
    line.reset();
    eye->Destroy();
    EXPECT_EQ(
        TracedLines(before),
        (Names{"(NOTICE): \tDeconstructing node", "(NOTICE): \tname: Line01",
               "(NOTICE): \tnode is a snapshot", "(ERROR): \t\tEncountered still acquired snapshot",
               "(ERROR): \t\tEncountered still acquired helper snapshot",
               "(ERROR): \t\tEncountered still acquired mesh snapshot",
               "(ERROR): \t\tEncountered still acquired shape snapshot",
               "(NOTICE): \tDeconstructing node", "(NOTICE): \tname: Eye",
               "(ERROR): \t\tEncountered still acquired lens snapshot"}));

    EXPECT_EQ(out->GetWorldTransform(), TVL::CMatrix4::Identity());
    out->SetLocalTransform(TVL::CMatrix4::Zero());
    look->SetColor(1, 1, 1);
    EXPECT_TRUE(mesh->GetMesh().vertices.empty());
    EXPECT_EQ(shape->GetCurveCount() + lens->GetTargetDistance(), 0);
    Node* const knee = Helper("Knee");
    knee->ReleaseSnapshot(out);

    // A sweep leaves nothing of the Core's, nor its batch of a selection.
    Node* const kept = knee->Clone(false);
    kept->HandleExtension(TVL::kBeginSelection, nullptr);
    EXPECT_EQ(SweepNodes().snapshots, 5);
    EXPECT_EQ(Listed(), "");
    EXPECT_EQ(kept->HandleExtension(TVL::kBeginSelection, nullptr), 1);
    kept->Destroy();
}

TEST_F(NodeLifetime, HandsANodeToACoreThatClaimsIt) {
    InGroup("Make", [&] { Helper("Hip"); });
    Node* const hip = Find("Hip");
    Node* const handle = Core(Helper("Knee", hip)->GetParent());
    EXPECT_EQ(hip->Claim(&rig, "Again"), nullptr);
    EXPECT_EQ(handle->Claim(&rig, "Again"), nullptr);  // the scene node has a real node
    hip->Unclaim();
    hip->Unclaim();
    EXPECT_EQ(Listed(), " Knee");
    Node* const claimed = handle->Claim(&other, "Joint");
    EXPECT_EQ(adaptor.FindNode(&other, "Joint"), claimed);
    EXPECT_TRUE(claimed && claimed->IsSameNode(hip));
    EXPECT_TRUE(handle->IsSnapshot() && !claimed->IsSnapshot());
    handle->Destroy();

    // The caller holds an unclaimed node from then on, and no record may end it.
    ASSERT_TRUE(world.Session().Undo());
    adaptor.FlushUndoBuffer();
    EXPECT_EQ(hip->GetNodeName(), "Hip");
    EXPECT_EQ(hip->GetName(), "");
    hip->Destroy();
}

}  // namespace
