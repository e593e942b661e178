#include "adaptor/utility_manager.h"
#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "host/interface.h"
#include "objects/custom_helper_object.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class NodeCreation : public NodeTest {
  protected:
    static Class_ID TransformClass(const std::string& hostName) {
        return Host(hostName)->GetTMController()->ClassID();
    }

    // Classes of a camera's animated parameters, in order.
    static std::vector<Class_ID> ParameterClasses(const std::string& hostName) {
        std::vector<Class_ID> classes;
        Object* const object = Host(hostName)->GetObjectRef();
        for (int part = 0; part < object->NumSubs(); ++part) {
            if (object->SubAnimName(part) != "Parameters") continue;
            Animatable* const parameters = object->SubAnim(part);
            for (int index = 0; index < parameters->NumSubs(); ++index)
                classes.push_back(parameters->SubAnim(index)->ClassID());
        }
        return classes;
    }

    static TriObject& MeshOf(const std::string& hostName) {
        return *static_cast<TriObject*>(Host(hostName)->GetObjectRef());
    }
};

TEST_F(NodeCreation, PutsTheAdaptorsControllersOnACamera) {
    Node* const camera = Camera("Cam1");
    EXPECT_EQ(camera->GetName(), "Rig_Cam1");
    EXPECT_EQ(Find("Cam1"), camera);
    EXPECT_EQ(Find("Rig_Cam1"), nullptr);
    EXPECT_EQ(adaptor.FindNode(&other, "Cam1"), nullptr);
    EXPECT_EQ(TransformClass("Rig_Cam1"), TransformControl::kClassID);
    EXPECT_EQ(ParameterClasses("Rig_Cam1"),
              (std::vector<Class_ID>{ScalarControl::kClassID, ScalarControl::kClassID}));
    EXPECT_EQ(camera->AcquireHelperSnapshot(), nullptr);
}

TEST_F(NodeCreation, LeavesTheHostsControllersIfTheOptionSaysSo) {
    world.SetOption(TVL::kOptimisedControllers, false);
    Camera("Cam1");
    Helper("Hip");
    EXPECT_EQ(TransformClass("Rig_Cam1"), kPositionRotationScaleClassId);
    EXPECT_EQ(TransformClass("Rig_Hip"), kPositionRotationScaleClassId);
    for (const Class_ID& parameter : ParameterClasses("Rig_Cam1"))
        EXPECT_EQ(parameter, kLinearFloatClassId);
}

TEST_F(NodeCreation, GivesAHelperItsMeshAndRedWires) {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh.faces = {0, 1, 2};
    Helper("Hip", nullptr, mesh);
    EXPECT_EQ(MeshOf("Rig_Hip").GetMesh().getNumFaces(), 1);
    EXPECT_EQ(Host("Rig_Hip")->GetWireColor(), 0x0000FFU);
    EXPECT_EQ(TransformClass("Rig_Hip"), TransformControl::kClassID);

    Helper("Empty");
    EXPECT_EQ(MeshOf("Rig_Empty").GetMesh().getNumFaces(), 0);
    EXPECT_EQ(MeshOf("Rig_Empty").GetMesh().getNumTVerts(), 1);
}

TEST_F(NodeCreation, IsFoundByOwnerInOrderOfCreation) {
    Node* const first = Helper("Joint");
    Node* const second = Helper("Joint");
    adaptor.CreateHelperNode(&other, "Joint", nullptr, {}, nullptr);
    EXPECT_EQ(Find("Joint"), first);
    EXPECT_EQ(adaptor.GetNodes(&rig), (std::vector<TVL::CNode*>{first, second}));
    EXPECT_TRUE(adaptor.GetNodes(nullptr).empty());
    EXPECT_EQ(Find("Nobody"), nullptr);
}

TEST_F(NodeCreation, TellsTheListenerInsideAGroupAlone) {
    Helper("Hip");
    EXPECT_TRUE(listener.heard.empty());
    InGroup("Make", [&] {
        Helper("Knee");
        Camera("Cam");
        adaptor.CreateLensNode(&rig, "Deaf", nullptr, nullptr);
    });
    EXPECT_EQ(listener.heard, (Heard{"+Knee", "+Cam"}));
}

TEST_F(NodeCreation, TakesAnOwnerWithoutAPluginRecord) {
    Plugin nameless("");
    nameless.plugin = nullptr;
    Node* const lens = Core(adaptor.CreateLensNode(&nameless, "Cam", nullptr, nullptr));
    Node* const helper = Core(adaptor.CreateHelperNode(nullptr, "Hip", nullptr, {}, nullptr));
    EXPECT_EQ(lens->GetName(), "_Cam");
    EXPECT_EQ(helper->GetName(), "_Hip");
    lens->Destroy();
    helper->Destroy();
}

class HelperLook : public NodeCreation {
  protected:
    // A helper of the adaptor's own, as it comes from a scene file.
    CustomHelperObject* const custom = new CustomHelperObject;
    INode* const customHost = GetCOREInterface()->CreateObjectNode(custom);
};

TEST_F(HelperLook, SetsTheWireColourFromTruncatedChannels) {
    Node* const hip = Helper("Hip");
    TVL::CSnapshot_Helper* const look = hip->AcquireHelperSnapshot();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kHuge = std::numeric_limits<float>::max();
    const struct {
        float red, green, blue;
        std::uint32_t colour;
    } cases[] = {{1, 0.5F, 0, 0x00007FFF},
                 {2, 0, 0, 254},
                 {0, 0, -1, 0x010000},
                 {1e7F, 0, -1e7F, 0x800080},
                 {kNan, kHuge, -kHuge, 0}};
    for (const auto& given : cases) {
        look->SetColor(given.red, given.green, given.blue);
        EXPECT_EQ(Host("Rig_Hip")->GetWireColor(), given.colour);
    }
    look->SetWireframe(true);  // nothing that a triangle mesh has
    look->SetBackfaceCull(true);
    hip->ReleaseHelperSnapshot(look);
}

TEST_F(HelperLook, IsKeptByTheAdaptorsOwnHelperObject) {
    Node* const hip = Helper("Hip");
    Host("Rig_Hip")->AttachChild(customHost);
    custom->mesh.vertices = {{1, 2, 3}};
    Node* const node = Core(hip->GetChild(0));
    TVL::CSnapshot_Helper* const look = node->AcquireHelperSnapshot();
    look->SetColor(0, 1, 0.25F);
    look->SetWireframe(false);
    look->SetBackfaceCull(true);
    look->SetMesh({});  // its mesh is what it was stored with
    EXPECT_EQ(custom->colour, (std::array<float, 3>{0, 1, 0.25F}));
    EXPECT_EQ(customHost->GetWireColor(), 0x3FFF00U);
    EXPECT_EQ(custom->wireframe, 0);
    EXPECT_EQ(custom->backfaceCull, 1);
    EXPECT_EQ(custom->mesh.vertices.size(), 1U);
    node->ReleaseHelperSnapshot(look);
    node->Destroy();

    customHost->SetNodeTM(0, MovedBy(10));
    Box3 box;
    custom->GetWorldBoundBox(0, customHost, nullptr, box);
    EXPECT_EQ(box.pmin, Point3(11, 2, 3));
}

TEST_F(HelperLook, DoesNothingToANodeThatShowsAnotherObjectByNow) {
    Node* const hip = Helper("Hip");
    INode* const host = Host("Rig_Hip");
    TVL::CSnapshot_Helper* const look = hip->AcquireHelperSnapshot();
    int shown = 0;
    while (host->GetReference(shown) != host->GetObjectRef())
        ++shown;
    host->ReplaceReference(shown, custom);
    look->SetColor(0, 1, 0);
    look->SetWireframe(false);
    EXPECT_EQ(host->GetWireColor(), 255U);
    EXPECT_EQ(custom->colour, (std::array<float, 3>{1, 0, 0}));
    EXPECT_EQ(custom->wireframe, 1);
    hip->ReleaseHelperSnapshot(look);
}

}  // namespace
