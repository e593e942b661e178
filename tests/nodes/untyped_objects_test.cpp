#include "tests/nodes/untyped_objects.h"

#include "controllers/transform_control.h"
#include "nodes/max_node.h"
#include "objects/custom_helper_object.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class UntypedObjects : public NodeTest {
  protected:
    // Runs `work` on a node that shows the object.
    template <class Work>
    static void WithNode(Object* object, Work work) {
        INode* const host = GetCOREInterface()->CreateObjectNode(object);
        work(*new CMAXNode(nullptr, "", nullptr, host));
    }
};

TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh.faces = {0, 1, 2};
    return mesh;
}

TEST_F(UntypedObjects, AreWhatTheirIdsSay) {
    WithNode(untyped::NewCamera(), [](CMAXNode& node) {
        TVL::CSnapshot_Lens* const lens = node.AcquireLensSnapshot(0);
        ASSERT_NE(lens, nullptr);
        lens->SetFieldOfView(30);
        EXPECT_NEAR(lens->GetFieldOfView(), 30, 1e-4);
        EXPECT_EQ(node.AcquireMeshSnapshot(0), nullptr);
    });
    WithNode(untyped::NewShape(), [](CMAXNode& node) {
        TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(0);
        ASSERT_NE(shape, nullptr);
        EXPECT_EQ(shape->GetCurveLength(), 7);
        EXPECT_EQ(node.AcquireLensSnapshot(0), nullptr);
    });
    const struct {
        SClass_ID superClass;
        Class_ID id;
        bool isMesh;
    } meshes[] = {{GEOMOBJECT_CLASS_ID, kTriObjectClassId, true},
                  {GEOMOBJECT_CLASS_ID, {9, 1}, false},
                  {HELPER_CLASS_ID, kTriObjectClassId, false}};
    for (const auto& [superClass, id, isMesh] : meshes) {
        WithNode(untyped::NewMesh(superClass, id), [faces = isMesh ? 1 : 0](CMAXNode& node) {
            node.AcquireHelperSnapshot()->SetMesh(Triangle());
            auto& shown = static_cast<TriObject&>(*node.HostNode()->GetObjectRef());
            EXPECT_EQ(shown.GetMesh().getNumFaces(), faces);
            EXPECT_EQ(node.AcquireMeshSnapshot(0)->GetMesh().FaceCount(), faces);
        });
    }
}

// As what stands in for one that could not be read does.
TEST_F(UntypedObjects, AreNotOursForBearingTheIdsOfOurs) {
    WithNode(untyped::NewHelper(kCustomHelperObjectClassId), [](CMAXNode& node) {
        TVL::CSnapshot_Helper* const look = node.AcquireHelperSnapshot();
        look->SetMesh(Triangle());
        look->SetWireframe(true);
        look->SetBackfaceCull(true);
        look->SetColor(1, 0, 0);
        EXPECT_EQ(node.HostNode()->GetWireColor(), 0xFFU);
    });
    WithNode(untyped::NewCamera(), [](CMAXNode& node) {
        Control* const control = untyped::NewTransform(TransformControl::kClassID);
        INode* const host = node.HostNode();
        host->SetTMController(control);
        node.HandleExtension(TVL::kUseHostController, nullptr);
        node.Delete(false);
        EXPECT_EQ(host->GetTMController(), control);
    });
}

}  // namespace
