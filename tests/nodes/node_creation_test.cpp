#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "objects/custom_helper_object.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class NodeCreation : public NodeTest {
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

TEST_F(NodeCreation, BringsTheAdaptorsControllersIfItIsToUntilTheSceneNodeIsLeftAlone) {
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

TEST_F(NodeCreation, NamesTheSceneNodeByItsOwnerWhoFindsTheFirstOfAName) {
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
    EXPECT_EQ(adaptor.FindNode(&nameless, "Joint"), nullptr);
    EXPECT_EQ(adaptor.GetNodes(&rig), (std::vector<TVL::CNode*>{first, second}));
    EXPECT_EQ(adaptor.GetNodes(nullptr), std::vector<TVL::CNode*>{ownerless[1]});
    for (Node* node : ownerless)
        node->Destroy();

    // A helper is a triangle mesh with red wires.
    const auto meshOf = [](const char* name) -> Mesh& {
        return static_cast<TriObject*>(Host(name)->GetObjectRef())->GetMesh();
    };
    EXPECT_EQ(meshOf("Rig_Joint").getNumFaces(), 1);
    EXPECT_EQ(meshOf("Other_Joint").getNumFaces(), 0);
    EXPECT_EQ(meshOf("Other_Joint").getNumTVerts(), 1);
    EXPECT_EQ(Host("Rig_Joint")->GetWireColor(), 0x0000FFU);
    EXPECT_EQ(TimesTraced("creating helper"), 3U);
    EXPECT_EQ(TimesTraced("meshname: Joint"), 2U);
    EXPECT_EQ(TimesTraced("parent: (NULL)"), 2U);
    EXPECT_EQ(TimesTraced("parent: Joint"), 1U);
}

using HelperLook = NodeTest;

// A helper of the adaptor's own, as it comes from a scene file.
TEST_F(HelperLook, IsThatOfTheAdaptorsOwnObjectAsLongAsTheNodeShowsItAndTheWiresOfTheNode) {
    auto* const custom = new CustomHelperObject;
    const auto node = NodeOn(custom);
    TVL::CSnapshot_Helper* const look = node->AcquireHelperSnapshot();
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
        EXPECT_EQ(node->HostNode()->GetWireColor(), given.colour);
    }

    look->SetColor(0, 1, 0.25F);
    look->SetWireframe(false);
    look->SetBackfaceCull(true);
    custom->mesh = Triangle();
    look->SetMesh({});  // its mesh is what it was stored with
    EXPECT_EQ(custom->colour, (std::array<float, 3>{0, 1, 0.25F}));
    EXPECT_EQ(custom->wireframe, 0);
    EXPECT_EQ(custom->backfaceCull, 1);
    EXPECT_EQ(custom->mesh.vertices.size(), 3U);

    INode* const kept = GetCOREInterface()->CreateObjectNode(custom);
    node->HostNode()->ReplaceReference(1, CreateNewTriObject());
    look->SetColor(1, 1, 1);
    look->SetWireframe(true);
    EXPECT_EQ(node->HostNode()->GetWireColor(), 0x3FFF00U);
    EXPECT_EQ(kept->GetObjectRef(), custom);
    EXPECT_EQ(custom->wireframe, 0);
    node->ReleaseHelperSnapshot(look);
}

}  // namespace
