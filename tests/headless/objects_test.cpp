#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>
#include <vector>

#include "host/animate.h"
#include "host/node.h"
#include "host/time.h"
#include "tests/headless/host_world.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

using ObjectTest = HostWorld;

TEST_F(ObjectTest, ACamerasParametersAreControllersThatNoOtherKindReplaces) {
    AnimateOn();
    CameraObject& camera = *host.CreateCameraObject(0);
    AnimateOff();
    INode* node = host.CreateObjectNode(&camera);
    Animatable& parameters = *camera.SubAnim(0);
    EXPECT_EQ(parameters.SubAnim(0)->NumKeys(), 0) << "what a camera starts with is no key";
    EXPECT_FALSE(parameters.AssignController(node->GetTMController(), 1));
    EXPECT_FALSE(parameters.AssignController(nullptr, 0));
    CameraObject* loose = host.CreateCameraObject(0);
    Step([&] {
        loose->SetConeState(1);
        loose->DeleteMe();
    });
    EXPECT_TRUE(session.Undo()) << "its maker has freed it";
}

TEST_F(ObjectTest, RaysFindTheNearestFaceFromEitherSideAndPassOverWhatIsNone) {
    Mesh mesh;
    mesh.verts = {{0, 0, 0}, {8, 0, 0}, {0, 8, 0}, {0, 0, 2}, {8, 0, 2}, {0, 8, 2}, {kNaN, 0, 5}};
    const int faces[6][3] = {{0, 1, 6}, {1, 4, 4}, {0, 1, 99}, {3, 4, -1}, {0, 2, 1}, {3, 4, 5}};
    mesh.setNumFaces(6);
    for (std::size_t i = 0; i < 6; ++i)
        mesh.faces[i].setVerts(faces[i][0], faces[i][1], faces[i][2]);
    // Where they meet it and z of the normal; both 0 for a miss.
    const std::tuple<Ray, float, float> cases[] = {
        {{{1, 1, 9}, {0, 0, -1}}, 7, 1},  {{{1, 1, -9}, {0, 0, 3}}, 3, -1},
        {{{1, 1, 1}, {0, 0, -1}}, 1, -1}, {{{1, 1, 2}, {0, 0, 1}}, 0, 1},
        {{{4, 4, 9}, {0, 0, -1}}, 7, 1},  {{{5, 5, 9}, {0, 0, -1}}, 0, 0},
        {{{1, 1, 9}, {0, 0, 0}}, 0, 0},   {{{8, 0, 1}, {0, 1, 0}}, 0, 0}};
    for (const auto& [ray, distance, up] : cases) {
        float at = 0;
        Point3 normal;
        EXPECT_EQ(mesh.IntersectRay(ray, at, normal), up != 0);
        EXPECT_EQ(at, distance);
        EXPECT_EQ(normal, Point3(0, 0, up));
    }
}

TEST_F(ObjectTest, SpheresAndShapesBecomeClosedMeshesThatLookOutward) {
    const double hexagon = 1.5 * std::sqrt(3.0) * 0.5 * 0.5;
    const std::pair<Object*, double> volumes[] = {
        {headless::NewSphere(2, 64), std::numbers::pi * 4 / 3 * 8},
        {headless::NewSplines({headless::StraightLines({{0, 0, 0}, {0, 0, 100}}),
                               headless::StraightLines({{0, 0, 50}}),
                               {}}),
         hexagon * 100}};
    for (const auto& [object, volume] : volumes) {
        EXPECT_EQ(object->ConvertToType(0, Class_ID{1, 1}), nullptr);
        Object* const converted = object->ConvertToType(0, kTriObjectClassId);
        const Mesh& mesh = static_cast<TriObject*>(converted)->GetMesh();
        EXPECT_EQ(mesh.getNumVerts() - mesh.getNumFaces() * 3 / 2 + mesh.getNumFaces(), 2);
        double six = 0;
        for (const Face& face : mesh.faces)
            six += double{DotProd(mesh.verts[face.v[0]],
                                  CrossProd(mesh.verts[face.v[1]], mesh.verts[face.v[2]]))};
        EXPECT_NEAR(six / 6 / volume, 1, 1e-2);
        converted->DeleteThis();
        object->DeleteThis();
    }
}

TEST_F(ObjectTest, SplinesAreFollowedBySegmentOrEvenlyByLength) {
    using headless::Corner;
    const float huge = std::numeric_limits<float>::max();
    const Point3 p{1, 2, 3};
    // The length, and the places at half of the segments and at half of the length.
    const std::tuple<headless::Spline, double, Point3, Point3> cases[] = {
        {headless::StraightLines({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}}), 4, {1, 0, 0}, {2, 0, 0}},
        {headless::StraightLines({{5, 5, 5}}), 0, {5, 5, 5}, {5, 5, 5}},
        {{{Corner(p), Corner(p)}, true}, 0, p, p},
        {{{{{}, {}, {1.0F / 3, 0, 0}}, {{2.0F / 3, 1.0F / 3, 0}, {1, 1, 0}, {}}}},  // y = x²
         std::sqrt(5.0) / 2 + std::asinh(2.0) / 4,
         {0.5F, 0.25F, 0},
         {0.61074F, 0.37300F, 0}},
        {{{{{}, {}, {1, 1, 0}}, {{0, 1, 0}, {1, 0, 0}, {}}}},  // with a cusp in the middle
         2 * std::sqrt(2.0) - 1,
         {0.5F, 0.75F, 0},
         {0.5F, 0.75F, 0}},
        {{{Corner({kNaN, 0, 0}), Corner(p), Corner({1, 2, 5})}}, 2, p, {1, 2, 4}},
        {{{Corner({-huge, 0, 0}), Corner({huge, 0, 0})}}, double{huge}, {}, {}},
    };
    for (const auto& [spline, length, half, halfAlong] : cases) {
        SCOPED_TRACE(length);
        ShapeObject* shape = headless::NewSplines({spline});
        EXPECT_NEAR(shape->LengthOfCurve(0, 0), length, 1e-6 * length);
        ExpectNear(shape->InterpCurve3D(0, 0, 0.5F, PARAM_SIMPLE), half, 1e-4);
        ExpectNear(shape->InterpCurve3D(0, 0, 0.5F, PARAM_NORMALIZED), halfAlong, 1e-4);
        for (const float parameter : {-1.0F, kNaN, 2.0F})
            shape->InterpCurve3D(0, 7, parameter, PARAM_NORMALIZED);
        shape->ConvertToType(0, kTriObjectClassId)->DeleteThis();
        shape->DeleteThis();
    }
}

TEST_F(ObjectTest, ABendMakesALineAnArcThatGrowsWithTime) {
    TriObject* column = CreateNewTriObject();
    column->GetMesh().verts = {{0, 0, 0}, {0, 0, 2}, {7, -1, 2}};  // and one beside the line
    const TimeValue second = GetTicksPerFrame() * GetFrameRate();
    INode* node = host.CreateObjectNode(headless::NewBend(column, 45));
    auto* const shown = static_cast<TriObject*>(node->EvalWorldState(0).obj);
    EXPECT_EQ(shown->GetMesh().verts[1], Point3(0, 0, 2));
    EXPECT_EQ(node->EvalWorldState(2 * second).obj, shown) << "what it shows stays one object";
    const float radius = 2 / (std::numbers::pi_v<float> / 2);
    ExpectNear(shown->GetMesh().verts[1], {0, radius, radius});
    ExpectNear(shown->GetMesh().verts[2], {7, radius, radius + 1});
    column->GetMesh().verts[1] = {0, 0, 1};
    column->NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
    node->EvalWorldState(0);
    EXPECT_EQ(shown->GetMesh().verts[1], Point3(0, 0, 1));

    Object* empty = headless::NewBend(nullptr, 90);
    EXPECT_EQ(empty->Eval(0).obj, empty);
    EXPECT_EQ(empty->ConvertToType(0, kTriObjectClassId), nullptr);
    empty->DeleteMe();
}

TEST_F(ObjectTest, NothingIsMadeOfAnUnknownClass) {
    EXPECT_EQ(host.CreateInstance(CTRL_FLOAT_CLASS_ID, kPositionRotationScaleClassId), nullptr);
    EXPECT_EQ(host.CreateInstance(0x9999, {1, 2}), nullptr);
    EXPECT_EQ(host.CreateObjectNode(nullptr), nullptr);
    EXPECT_EQ(headless::NewGuide(headless::NewSphere(10, 16), {}), nullptr) << "no such plug-in";
}

}  // namespace
