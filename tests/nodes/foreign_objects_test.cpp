#include "controllers/transform_control.h"
#include "headless/primitives.h"
#include "objects/custom_helper_object.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

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

class ForeignControl final : public Foreign<Control> {
  public:
    using Foreign::Foreign;
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

using ForeignObjects = NodeTest;

// Lends what it can and works with all of it. Names what was lent, and "faces" if a mesh that was
// written is there.
std::string WhatIsLentBy(CMAXNode& node) {
    TVL::CSnapshot_Lens* const lens = node.AcquireLensSnapshot(0);
    TVL::CSnapshot_Shape* const shape = node.AcquireShapeSnapshot(0);
    TVL::CSnapshot_Helper* const look = node.AcquireHelperSnapshot();
    TVL::CSnapshot_Mesh* const mesh = node.AcquireMeshSnapshot(0);
    std::string lent;
    if (lens) lent += " lens";
    if (shape) lent += " shape " + std::to_string(shape->GetCurveCount());
    if (look) {
        lent += " look";
        look->SetMesh(Triangle());
        look->SetWireframe(true);
        look->SetBackfaceCull(true);
        look->SetColor(1, 0, 0);
        EXPECT_EQ(node.HostNode()->GetWireColor(), 0xFFU);
    }
    if (mesh) {
        mesh->SetMesh(Triangle());
        const bool isHit = mesh->IntersectRay({1, 1, 9}, {0, 0, -1}, nullptr, nullptr);
        EXPECT_EQ(mesh->GetMesh().FaceCount(), isHit ? 1 : 0);
        lent += isHit ? " mesh of faces" : " mesh";
    }
    node.ReleaseLensSnapshot(lens);
    node.ReleaseShapeSnapshot(shape);
    node.ReleaseHelperSnapshot(look);
    node.ReleaseMeshSnapshot(mesh);
    return lent;
}

TEST_F(ForeignObjects, AreWhatTheirIdsSayButForWhatOnlyOursCanBe) {
    const auto line = headless::StraightLines({{0, 0, 0}, {1, 0, 0}});
    constexpr Class_ID kTriangles = kTriObjectClassId;
    const std::pair<Object*, const char*> cases[] = {
        {GetCOREInterface()->CreateCameraObject(0), " lens"},
        {headless::NewSplines({line}), " shape 1 look mesh of faces"},
        {headless::NewSphere(1, 8), " look mesh of faces"},
        {headless::NewGround(1, 1), " look mesh of faces"},
        {new CustomHelperObject, " look mesh"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, kTriangles), " look mesh of faces"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, {9, 1}), " look mesh"},
        {new ForeignMesh(HELPER_CLASS_ID, kTriangles), " look mesh"},
        {new ForeignMesh(GEOMOBJECT_CLASS_ID, kTriangles, false), " look mesh"},
        {new Foreign<HelperObject>(HELPER_CLASS_ID, kCustomHelperObjectClassId), " look mesh"},
    };
    for (const auto& [object, lent] : cases)
        EXPECT_EQ(WhatIsLentBy(*NodeOn(object)), lent);

    INode* const host = GetCOREInterface()->CreateObjectNode(CreateNewTriObject());
    auto* const node = new CMAXNode(nullptr, host);
    auto* const control = new ForeignControl(CTRL_MATRIX3_CLASS_ID, TransformControl::kClassID);
    host->SetTMController(control);
    node->HandleExtension(TVL::kUseHostController, nullptr);
    node->Delete(false);
    EXPECT_EQ(host->GetTMController(), control);
}

}  // namespace
