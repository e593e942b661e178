#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "headless/copies.h"
#include "host/animate.h"
#include "host/node.h"
#include "host/time.h"
#include "tests/headless/host_world.h"

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
    Control* next = NewFloat();
    Step([&] { EXPECT_TRUE(Parameters().AssignController(next, 1)); });
    EXPECT_EQ(Parameters().SubAnim(1), next);
    EXPECT_FALSE(Parameters().AssignController(node->GetTMController(), 1));
    EXPECT_FALSE(Parameters().AssignController(nullptr, 0));
    EXPECT_FALSE(Parameters().AssignController(next, 2));
    session.Undo();
    EXPECT_EQ(Parameters().SubAnim(1), before);
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
    EXPECT_EQ(mesh.getNumTVFaces(), mesh.getNumFaces());
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

using headless::Corner;
using headless::Knot;
using headless::Spline;

struct PlaneCurve {
    const char* name;
    Spline spline;
    double length;
    double (*lengthUpTo)(double x);  // from the start to where the curve is at x
};

TEST_F(ObjectTest, SplinesKeepTheLengthsOfTheirFormulas) {
    const double parabola = std::sqrt(5.0) / 2 + std::asinh(2.0) / 4;
    const PlaneCurve curves[] = {
        {"y = x², a quadratic curve raised to a cubic",
         {{{{}, {}, {1.0F / 3, 0, 0}}, {{2.0F / 3, 1.0F / 3, 0}, {1, 1, 0}, {}}}},
         parabola,
         [](double x) { return x * std::sqrt(1 + 4 * x * x) / 2 + std::asinh(2 * x) / 4; }},
        {"a line with handles of different lengths",
         {{{{}, {}, {0.1F, 0, 0}}, {{4, 0, 0}, {10, 0, 0}, {}}}},
         10,
         [](double x) { return x; }},
        {"a line there and back, as a closed spline",
         {{Corner({}), Corner({3, 0, 0})}, true},
         6,
         nullptr},
        {"with a cusp in the middle",
         {{{{}, {}, {1, 1, 0}}, {{0, 1, 0}, {1, 0, 0}, {}}}},
         2 * std::sqrt(2.0) - 1,
         nullptr},
    };
    for (const PlaneCurve& c : curves) {
        SCOPED_TRACE(c.name);
        ShapeObject* shape = headless::NewSplines({c.spline});
        EXPECT_NEAR(shape->LengthOfCurve(0, 0), c.length, 1e-6 * c.length);
        for (int i = 0; c.lengthUpTo && i <= 100; ++i) {
            const Point3 p =
                shape->InterpCurve3D(0, 0, static_cast<float>(i) / 100, PARAM_NORMALIZED);
            EXPECT_NEAR(c.lengthUpTo(double{p.x}), c.length * i / 100, 1e-6 * c.length);
        }
        shape->DeleteThis();
    }
}

TEST_F(ObjectTest, ACircleOfFourCurvesIsFollowedEvenly) {
    const float r = 10, handle = r * 0.5522847498F;  // which stays within 0.03% of a circle
    const auto knot = [&](const Point3& p, const Point3& along) {
        return Knot{p - along * handle, p, p + along * handle};
    };
    ShapeObject* shape =
        headless::NewSplines({{{knot({r, 0, 0}, {0, 1, 0}), knot({0, r, 0}, {-1, 0, 0}),
                                knot({-r, 0, 0}, {0, -1, 0}), knot({0, -r, 0}, {1, 0, 0})},
                               true}});
    const auto at = [shape](int i, int of) {
        return shape->InterpCurve3D(0, 0, static_cast<float>(i) / static_cast<float>(of),
                                    PARAM_NORMALIZED);
    };
    constexpr int kChords = 4000;
    double sum = 0;
    for (int i = 1; i <= kChords; ++i) {
        const double chord = Length(at(i, kChords) - at(i - 1, kChords));
        EXPECT_NEAR(chord, shape->LengthOfCurve(0, 0) / kChords, 1e-5);
        sum += chord;
    }
    EXPECT_NEAR(shape->LengthOfCurve(0, 0), sum, 1e-5 * sum);
    EXPECT_NEAR(sum, 2 * std::numbers::pi * r, 3e-4 * sum);
    EXPECT_EQ(at(0, 1), at(1, 1));
    EXPECT_NEAR(Length(at(1, 2) - Point3(-r, 0, 0)), 0, 1e-4);
    shape->DeleteThis();
}

TEST_F(ObjectTest, SplinesWithoutExtentOrWithPlacesThatAreNoNumbersAreHarmless) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float huge = std::numeric_limits<float>::max();
    const Point3 p{1, 2, 3};
    ShapeObject* shape =
        headless::NewSplines({{{Corner(p), Corner(p)}, true},
                              {{Corner(p)}, true},
                              {{}, true},
                              {{Corner({nan, 0, 0}), Corner(p), Corner({1, 2, 5})}},
                              {{{{}, {}, {nan, 0, 0}}, Corner(p)}},
                              {{Corner({-huge, 0, 0}), Corner({huge, 0, 0})}}});
    for (int curve = 0; curve < shape->NumberOfCurves(); ++curve) {
        EXPECT_GE(shape->LengthOfCurve(0, curve), 0) << curve;
        for (const int type : {PARAM_SIMPLE, PARAM_NORMALIZED}) {
            for (const float parameter : {-1.0F, 0.5F, nan, 2.0F})
                shape->InterpCurve3D(0, curve, parameter, type);
        }
    }
    EXPECT_EQ(shape->InterpCurve3D(0, 0, 0.5F, PARAM_NORMALIZED), p);
    EXPECT_EQ(shape->LengthOfCurve(0, 3), 2) << "the stretch that starts nowhere is passed over";
    EXPECT_EQ(shape->InterpCurve3D(0, 3, 0.5F, PARAM_NORMALIZED), Point3(1, 2, 4));
    EXPECT_EQ(shape->LengthOfCurve(0, 5), huge);
    shape->ConvertToType(0, kTriObjectClassId)->DeleteThis();
    shape->DeleteThis();
}

// Six times the volume, if the mesh is closed and looks outward.
double SixVolumes(const Mesh& mesh) {
    double sum = 0;
    for (const Face& face : mesh.faces)
        sum += double{DotProd(mesh.verts[face.v[0]],
                              CrossProd(mesh.verts[face.v[1]], mesh.verts[face.v[2]]))};
    return sum;
}

TEST_F(ObjectTest, AShapeBecomesThinTubes) {
    ShapeObject* shape = headless::NewSplines({headless::StraightLines({{0, 0, 0}, {0, 0, 100}}),
                                               headless::StraightLines({{0, 0, 50}}),
                                               {}});
    Object* converted = shape->ConvertToType(0, kTriObjectClassId);
    const Mesh& mesh = static_cast<TriObject*>(converted)->GetMesh();
    EXPECT_EQ(mesh.getNumVerts() - mesh.getNumFaces() * 3 / 2 + mesh.getNumFaces(), 2);
    const double hexagon = 1.5 * std::sqrt(3.0) * 0.5 * 0.5;
    EXPECT_NEAR(SixVolumes(mesh) / 6, hexagon * 100, 1e-2);
    converted->DeleteThis();
    shape->DeleteThis();
}

TEST_F(ObjectTest, AGroundIsASquareThatLooksUp) {
    TriObject* ground = headless::NewGround(8, 3);
    const Mesh& mesh = ground->GetMesh();
    EXPECT_EQ(mesh.getNumFaces(), 18);
    EXPECT_EQ(mesh.getNumTVFaces(), 18);
    float area = 0;
    for (const Face& face : mesh.faces) {
        const Point3& a = mesh.verts[face.v[0]];
        const Point3 twice = CrossProd(mesh.verts[face.v[1]] - a, mesh.verts[face.v[2]] - a);
        EXPECT_GT(twice.z, 0);
        area += twice.z / 2;
    }
    EXPECT_NEAR(area, 64, 1e-4);
    EXPECT_EQ(mesh.getBoundingBox().pmin, Point3(-4, -4, 0));
    EXPECT_EQ(mesh.getBoundingBox().pmax, Point3(4, 4, 0));
    ground->DeleteThis();
}

class BendTest : public HostWorld {
  protected:
    // Two units apart along z, and one beside the line.
    static TriObject* NewColumn() {
        TriObject* object = CreateNewTriObject();
        object->GetMesh().verts = {{0, 0, 0}, {0, 0, 2}, {7, -1, 2}};
        return object;
    }
    static TimeValue Seconds(int count) { return count * GetTicksPerFrame() * GetFrameRate(); }
    static const Mesh& Shown(INode* node, TimeValue t) {
        return static_cast<TriObject*>(node->EvalWorldState(t).obj)->GetMesh();
    }
};

TEST_F(BendTest, ALineBecomesAnArcThatGrowsWithTime) {
    INode* node = host.CreateObjectNode(headless::NewBend(NewColumn(), 45));
    EXPECT_EQ(Shown(node, 0).verts[1], Point3(0, 0, 2));
    const Object* kept = node->EvalWorldState(0).obj;
    const float radius = 2 / (std::numbers::pi_v<float> / 2);
    const Mesh& quarter = Shown(node, Seconds(2));
    ExpectNear(quarter.verts[0], {0, 0, 0});
    ExpectNear(quarter.verts[1], {0, radius, radius});
    ExpectNear(quarter.verts[2], {7, radius, radius + 1});
    EXPECT_EQ(node->EvalWorldState(0).obj, kept) << "what it shows stays one object";

    auto* base = static_cast<TriObject*>(node->GetObjectRef()->GetReference(0));
    base->GetMesh().verts[1] = {0, 0, 1};
    base->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    EXPECT_EQ(Shown(node, 0).verts[1], Point3(0, 0, 1));
}

TEST_F(BendTest, ABaseThatIsNoMeshIsConvertedWhenItIsAskedFor) {
    Object* bend = headless::NewBend(headless::NewSphere(1, 8), 90);
    INode* node = host.CreateObjectNode(bend);
    EXPECT_EQ(node->EvalWorldState(0).obj, bend);
    Object* straight = bend->ConvertToType(0, kTriObjectClassId);
    Object* bent = bend->ConvertToType(Seconds(1), kTriObjectClassId);
    ASSERT_NE(bent, bend);
    // The pole that was 2 away goes around a quarter.
    ExpectNear(static_cast<TriObject*>(straight)->GetMesh().verts.back(), {0, 0, 1});
    const float radius = 2 / (std::numbers::pi_v<float> / 2);
    ExpectNear(static_cast<TriObject*>(bent)->GetMesh().verts.back(), {0, radius, radius - 1});
    straight->DeleteThis();
    bent->DeleteThis();

    for (Object* base :
         {static_cast<Object*>(host.CreateCameraObject(0)), static_cast<Object*>(nullptr)}) {
        Object* empty = headless::NewBend(base, 90);
        EXPECT_EQ(empty->Eval(0).obj, empty);
        EXPECT_EQ(empty->CanConvertToType(kTriObjectClassId), 0);
        EXPECT_EQ(empty->ConvertToType(0, kTriObjectClassId), nullptr);
        empty->DeleteMe();
    }
}

TEST_F(BendTest, ItIsCopiedWithItsBase) {
    INode* node = host.CreateObjectNode(headless::NewBend(NewColumn(), 45));
    const std::vector<Point3> expected = Shown(node, Seconds(2)).verts;
    auto* copy = static_cast<Object*>(headless::CopyOf(*node->GetObjectRef()));
    EXPECT_NE(copy->GetReference(0), node->GetObjectRef()->GetReference(0));
    host.DeleteNode(node);
    EXPECT_EQ(Shown(host.CreateObjectNode(copy), Seconds(2)).verts, expected);
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
