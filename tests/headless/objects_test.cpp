#include <cmath>
#include <limits>
#include <numbers>

#include "headless/host_world.h"
#include "host/animate.h"

namespace {

class CameraTest : public HostWorld {
  protected:
    CameraObject& camera = *host.CreateCameraObject(0);
    INode* node = host.CreateObjectNode(&camera);

    Animatable& Parameters() { return *camera.SubAnim(0); }
    float Fov(TimeValue t) {
        Interval valid = FOREVER;
        return camera.GetFOV(t, valid);
    }
};

TEST_F(CameraTest, ItsParametersAreFoundByName) {
    EXPECT_STREQ(node->GetName(), "Camera01");
    EXPECT_EQ(camera.SubAnimName(0), "Parameters");
    ASSERT_EQ(Parameters().NumSubs(), 2);
    EXPECT_EQ(Parameters().SubAnimName(0), "FOV");
    EXPECT_EQ(Parameters().SubAnimName(1), "Target Distance");
    EXPECT_EQ(Fov(0), std::numbers::pi_v<float> / 4);
    EXPECT_EQ(host.CreateCameraObject(3), nullptr);
}

TEST_F(CameraTest, AnimateModeMakesKeysAndACameraIsMadeWithoutAny) {
    AnimateOn();
    INode* other = host.CreateObjectNode(host.CreateCameraObject(0));
    Animatable* fov = other->GetObjectRef()->SubAnim(0)->SubAnim(0);
    EXPECT_EQ(fov->NumKeys(), 0);
    camera.SetFOV(0, 1);
    camera.SetFOV(320, 2);
    AnimateOff();
    EXPECT_EQ(Parameters().SubAnim(0)->NumKeys(), 2);
    EXPECT_EQ(Fov(160), 1.5F);
}

TEST_F(CameraTest, AParameterTakesAnotherFloatControllerUndoably) {
    Animatable* before = Parameters().SubAnim(1);
    auto* next =
        static_cast<Control*>(host.CreateInstance(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId));
    Step([&] { EXPECT_TRUE(Parameters().AssignController(next, 1)); });
    EXPECT_EQ(Parameters().SubAnim(1), next);
    EXPECT_FALSE(Parameters().AssignController(node->GetTMController(), 1));
    EXPECT_FALSE(Parameters().AssignController(nullptr, 0));
    EXPECT_FALSE(Parameters().AssignController(next, 2));
    session.Undo();
    EXPECT_EQ(Parameters().SubAnim(1), before);
}

TEST_F(CameraTest, TheTypeOfTheFieldOfViewIsOneOfThree) {
    EXPECT_EQ(camera.SetFOVType(2), 1);
    EXPECT_EQ(camera.SetFOVType(3), 0);
    EXPECT_EQ(camera.GetFOVType(), 2);
}

TEST_F(CameraTest, ACameraThatIsFreedByItsMakerLeavesHarmlessRecords) {
    CameraObject* loose = host.CreateCameraObject(0);
    Step([&] {
        loose->SetConeState(1);
        loose->SetFOV(0, 1);
        loose->DeleteMe();
    });
    EXPECT_TRUE(session.Undo());
    EXPECT_TRUE(session.Redo());
}

using ObjectTest = HostWorld;

TEST_F(ObjectTest, MeshTablesAreKeptOrDroppedWhenTheyAreSized) {
    INode* node = Add("mesh");
    Mesh& mesh = static_cast<TriObject*>(node->GetObjectRef())->GetMesh();
    EXPECT_TRUE(mesh.setNumVerts(2));
    mesh.setVert(1, {1, 2, 3});
    EXPECT_TRUE(mesh.setNumVerts(3, 1));
    EXPECT_EQ(mesh.verts[1], Point3(1, 2, 3));
    EXPECT_TRUE(mesh.setNumVerts(3, 0));
    EXPECT_EQ(mesh.verts[1], Point3());
    EXPECT_FALSE(mesh.setNumVerts(-1));
    EXPECT_EQ(mesh.getNumVerts(), 3);
    mesh.setNumFaces(1);
    mesh.faces[0].setEdgeVisFlags(1, 0, 1);
    EXPECT_TRUE(mesh.faces[0].getEdgeVis(0));
    EXPECT_FALSE(mesh.faces[0].getEdgeVis(1));
    EXPECT_FALSE(mesh.faces[0].getEdgeVis(3));
    EXPECT_EQ(node->EvalWorldState(0).obj, node->GetObjectRef());
    mesh.FreeAll();
    EXPECT_TRUE(mesh.getBoundingBox().IsEmpty());
}

TEST_F(ObjectTest, ASphereBecomesAClosedMesh) {
    Object* sphere = headless::NewSphere(2, 8);
    INode* node = host.CreateObjectNode(sphere);
    ASSERT_NE(sphere->CanConvertToType(kTriObjectClassId), 0);
    Object* converted = sphere->ConvertToType(0, kTriObjectClassId);
    ASSERT_NE(converted, sphere);
    const Mesh& mesh = static_cast<TriObject*>(converted)->GetMesh();
    // Vertices, edges and faces of a closed surface without holes.
    EXPECT_EQ(mesh.getNumVerts() - mesh.getNumFaces() * 3 / 2 + mesh.getNumFaces(), 2);
    for (const Point3& p : mesh.verts)
        EXPECT_NEAR(p.Length(), 2, 1e-5);
    for (const Face& face : mesh.faces) {
        const Point3 &a = mesh.verts[face.v[0]], &b = mesh.verts[face.v[1]],
                     &c = mesh.verts[face.v[2]];
        EXPECT_GT(DotProd(CrossProd(b - a, c - a), a + b + c), 0) << "a face looks inward";
    }
    converted->DeleteThis();
    EXPECT_EQ(node->GetObjectRef()->ConvertToType(0, Class_ID{1, 1}), nullptr);
}

TEST_F(ObjectTest, StraightLinesAreFollowedBySegmentOrByLength) {
    ShapeObject* shape =
        headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}}),
                              {},
                              headless::StraightLines({{5, 5, 5}})});
    host.CreateObjectNode(shape);
    EXPECT_EQ(shape->NumberOfCurves(), 3);
    EXPECT_EQ(shape->LengthOfCurve(0, 0), 4);
    EXPECT_EQ(shape->LengthOfCurve(0, 7), 0);
    EXPECT_EQ(shape->InterpCurve3D(0, 0, 0.5F, PARAM_SIMPLE), Point3(1, 0, 0));
    EXPECT_EQ(shape->InterpCurve3D(0, 0, 0.5F, PARAM_NORMALIZED), Point3(2, 0, 0));
    EXPECT_EQ(shape->InterpCurve3D(0, 0, 2, PARAM_NORMALIZED), Point3(4, 0, 0));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(shape->InterpCurve3D(0, 0, nan, PARAM_NORMALIZED), Point3());
    EXPECT_EQ(shape->InterpCurve3D(0, 1, 0.5F, PARAM_NORMALIZED), Point3());
    EXPECT_EQ(shape->InterpCurve3D(0, 2, 0.5F, PARAM_SIMPLE), Point3(5, 5, 5));
}

TEST_F(ObjectTest, InstancesAreMadeByClassAndNothingIsMadeOfAnUnknownOne) {
    EXPECT_EQ(host.CreateInstance(CTRL_FLOAT_CLASS_ID, kPositionRotationScaleClassId), nullptr);
    EXPECT_EQ(host.CreateInstance(0x9999, {1, 2}), nullptr);
    auto* mesh = static_cast<Object*>(host.CreateInstance(GEOMOBJECT_CLASS_ID, kTriObjectClassId));
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(host.CreateObjectNode(nullptr), nullptr);
    EXPECT_EQ(host.CreateObjectNode(mesh)->GetObjectRef(), mesh);
}

}  // namespace
