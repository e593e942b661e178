#include "controllers/transform_control.h"
#include "objects/custom_helper_object.h"
#include "tests/nodes/node_test.h"

// What a node lends by the kind of its object, among them objects of classes without the language's
// type information, as the host's own and those of other plug-ins may be: this file is compiled
// without it.
namespace {

// Says that it is of some class.
template <class Base>
class Foreign : public Base {
  public:
    Foreign(SClass_ID superClass, Class_ID id) : superClass_(superClass), id_(id) {}
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return id_; }
    void GetClassName(HostString& name) override { name = "Foreign"; }
    void DeleteThis() override { delete this; }

  private:
    SClass_ID superClass_;
    Class_ID id_;
};

// Triangles, whatever it says it is; or it only claims to be some, like what stands in for a mesh
// that could not be read.
class ForeignMesh final : public Foreign<TriObject> {
  public:
    ForeignMesh(SClass_ID superClass, Class_ID id, bool isTrue = true)
        : Foreign(superClass, id), isTrue_(isTrue) {}
    int CanConvertToType(Class_ID) override { return isTrue_; }
    Mesh& GetMesh() override {
        EXPECT_TRUE(isTrue_) << "there is none behind what only claims to be a mesh";
        return mesh_;
    }

  private:
    bool isTrue_;
    Mesh mesh_;
};

// Lines along x whose point at a parameter is the parameter, and a point in the end. Notes what it
// is asked.
class ForeignShape final : public Foreign<ShapeObject> {
  public:
    using Foreign::Foreign;
    int NumberOfCurves() override { return curves; }
    float LengthOfCurve(TimeValue, int curve) override { return static_cast<float>(curve); }
    Point3 InterpCurve3D(TimeValue t, int curve, float parameter, int type) override {
        EXPECT_TRUE(t == 7200 && curve < curves && type == PARAM_NORMALIZED);
        asked.push_back(parameter);
        return {curve == 2 ? 0 : parameter, 0, 0};
    }

    int curves = 3;
    std::vector<float> asked;
};

class ForeignControl final : public Foreign<Control> {
  public:
    using Foreign::Foreign;
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

using ShownObjects = NodeTest;

// Lends what it can and works with all of it. Names what was lent, and "face" or "faces" if a mesh
// that was written is there: the look's, or the mesh's own.
std::string WhatIsLentBy(CMAXNode& node) {
    std::string lent;
    if (node.AcquireLensSnapshot(0)) lent += " lens";
    if (TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(0))
        lent += " shape " + std::to_string(shape->GetCurveCount());
    if (TVL::CSnapshot_Helper* const look = node.AcquireHelperSnapshot()) {
        lent += " look";
        look->SetMesh(Triangle());
        look->SetWireframe(true);
        look->SetBackfaceCull(true);
        look->SetColor(1, 0, 0);
    }
    if (TVL::CSnapshot_Mesh* const mesh = node.AcquireMeshSnapshot(0)) {
        if (mesh->GetMesh().FaceCount() == 1) lent += " with a face,";
        mesh->SetMesh(Triangle());
        const bool isHit = mesh->IntersectRay({1, 1, 9}, {0, 0, -1}, nullptr, nullptr);
        EXPECT_EQ(mesh->GetMesh().FaceCount(), isHit ? 1 : 0);
        lent += isHit ? " mesh of faces" : " mesh";
    }
    return lent;
}

TEST_F(ShownObjects, AreWhatTheirIdsSayButForWhatOnlyOursCanBe) {
    const auto line = headless::StraightLines({{0, 0, 0}, {1, 0, 0}});
    constexpr Class_ID kTriangles = kTriObjectClassId;
    const std::pair<Object*, const char*> cases[] = {
        {GetCOREInterface()->CreateCameraObject(0), " lens"},
        {headless::NewSplines({line}), " shape 1 look mesh of faces"},
        {headless::NewSphere(1, 8), " look mesh of faces"},
        {new CustomHelperObject, " look mesh"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, kTriangles), " look with a face, mesh of faces"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, {9, 1}), " look mesh"},
        {new ForeignMesh(HELPER_CLASS_ID, kTriangles), " look mesh"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, kTriangles, false), " look mesh"},
        {new Foreign<HelperObject>(HELPER_CLASS_ID, kCustomHelperObjectClassId), " look mesh"},
    };
    for (const auto& [object, lent] : cases)
        EXPECT_EQ(WhatIsLentBy(*NodeOn(object)), lent);

    auto* const control = new ForeignControl(CTRL_MATRIX3_CLASS_ID, TransformControl::kClassID);
    CMAXNode* const node = NodeOn(headless::NewSphere(1, 8)).release();
    INode* const host = node->HostNode();
    host->SetTMController(control);
    node->HandleExtension(TVL::kUseHostController, nullptr);
    node->Delete(false);
    EXPECT_EQ(host->GetTMController(), control);
}

TEST_F(ShownObjects, LendALensThatConvertsAnglesAloneUntilTheCameraIsNotShown) {
    Node* const eye = Camera("Eye");
    TVL::CSnapshot_Lens* const lens = eye->AcquireLensSnapshot(0.5);
    EXPECT_EQ(lens->GetTime(), 0.5);
    EXPECT_EQ(lens->GetLensTransform(), TVL::CMatrix4::Identity());
    const auto reads = [&](double angle, int type, double distance) {
        EXPECT_EQ(lens->GetFieldOfView(), angle);
        EXPECT_EQ(lens->GetFieldOfViewType(), type);
        EXPECT_EQ(lens->GetTargetDistance(), distance);
    };
    const auto write = [&](int type) {
        lens->SetFieldOfView(45);
        lens->SetFieldOfViewType(type);
        lens->SetTargetDistance(12.3);
    };
    const std::pair<int, int> types[] = {{1, 1}, {0, 0}, {2, 2}, {-1, 2}, {3, 2}, {INT_MAX, 2}};
    for (const auto& [asked, set] : types) {
        write(asked);
        reads(double{static_cast<float>(45 * 0.017453292519943295)} * 57.29577951308232, set,
              double{12.3F});  // in host units
    }
    Host("Rig_Eye")->ReplaceReference(1, headless::NewSphere(1, 8));
    write(1);
    reads(0, 0, 0);
    DeleteInHost("Rig_Eye");
    reads(0, 0, 0);
    eye->ReleaseLensSnapshot(nullptr);
}

TEST_F(ShownObjects, LendTheCurveThatIsSetOfThoseThatThereAreAndItsTangentFromTwoPointsInside) {
    auto* const telling = new ForeignShape(SHAPE_CLASS_ID, {1, 2});
    const auto node = NodeOn(telling);
    TVL::CSnapshot_Shape* const shape = node->AcquireShapeSnapshot(1.5);
    const std::pair<int, int> curves[] = {{-1, 0}, {99, 2}, {INT_MIN, 0}, {INT_MAX, 2}, {1, 1}};
    for (const auto& [asked, set] : curves) {
        shape->SetCurve(asked);
        EXPECT_EQ(shape->GetCurve(), set);
        EXPECT_EQ(shape->GetCurveLength(), set);  // host units
    }
    EXPECT_EQ(shape->GetCurvePoint(0.5), (Place{0.5, 0, 0}));
    const std::pair<double, double> tangents[] = {
        {0, 0},           {0.000002, 0}, {0.5, 0.5 - 0.000005}, {1, 0.99999}, {0.999996, 0.99999},
        {1e300, 0.99999}, {-3, 0},       {7, 0.99999}};
    for (const auto& [parameter, from] : tangents) {
        telling->asked.clear();
        EXPECT_NEAR(shape->GetCurveTangent(parameter)[0], 1, 1e-12) << parameter;
        EXPECT_EQ(telling->asked, (std::vector<float>{static_cast<float>(from),
                                                      static_cast<float>(from + 0.00001)}));
    }
    shape->GetCurveTangent(NAN);

    // A released snapshot keeps its curve, also where there are fewer by then.
    shape->SetCurve(2);
    EXPECT_EQ(shape->GetCurveTangent(0.5), (Place{0, 1, 0}));
    node->ReleaseShapeSnapshot(shape);
    ASSERT_EQ(node->AcquireShapeSnapshot(1.5), shape);
    EXPECT_EQ(shape->GetCurve(), 2);
    telling->curves = 1;
    EXPECT_EQ(shape->GetCurveLength(), 0);
    EXPECT_EQ(shape->GetCurvePoint(0.5), Place());
    node->HostNode()->ReplaceReference(1, headless::NewSphere(1, 8));  // the telling one is gone
    EXPECT_EQ(shape->GetCurveCount(), 0);
    shape->SetCurve(5);
    EXPECT_EQ(shape->GetCurve(), 0);
    node->ReleaseShapeSnapshot(nullptr);
}

// A helper of the adaptor's own, as it comes from a scene file.
TEST_F(ShownObjects, LendALookThatReachesTheAdaptorsOwnObjectAsLongAsItIsShown) {
    auto* const custom = new CustomHelperObject;
    const auto node = NodeOn(custom);
    TVL::CSnapshot_Helper* const look = node->AcquireHelperSnapshot();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kHuge = std::numeric_limits<float>::max();
    const std::pair<std::array<float, 3>, std::uint32_t> cases[] = {{{2, 0.5F, 0}, 0x00007FFE},
                                                                    {{0, 0, -1}, 0x010000},
                                                                    {{1e7F, 0, -1e7F}, 0x800080},
                                                                    {{kNan, kHuge, -kHuge}, 0},
                                                                    {{0, 1, 0.25F}, 0x3FFF00}};
    for (const auto& [colour, wires] : cases) {
        look->SetColor(colour[0], colour[1], colour[2]);
        EXPECT_EQ(node->HostNode()->GetWireColor(), wires);
    }
    look->SetWireframe(false);
    look->SetBackfaceCull(true);
    custom->mesh = Triangle();
    look->SetMesh({});  // its mesh is what it was stored with
    EXPECT_EQ(custom->colour, (std::array<float, 3>{0, 1, 0.25F}));
    EXPECT_TRUE(!custom->wireframe && custom->backfaceCull);
    EXPECT_EQ(custom->mesh.vertices.size(), 3U);

    GetCOREInterface()->CreateObjectNode(custom);
    node->HostNode()->ReplaceReference(1, CreateNewTriObject());
    look->SetColor(1, 1, 1);
    look->SetWireframe(true);
    EXPECT_EQ(node->HostNode()->GetWireColor(), 0x3FFF00U);
    EXPECT_FALSE(custom->wireframe);
}

}  // namespace
