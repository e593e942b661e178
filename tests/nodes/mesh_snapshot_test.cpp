#include <climits>
#include <cmath>
#include <memory>

#include "headless/primitives.h"
#include "nodes/max_node.h"
#include "nodes/node_lifetime.h"
#include "objects/custom_helper_object.h"
#include "objects/mesh_exchange.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

using Place = std::array<double, 3>;

// Says that it is a triangle mesh, as what stands in for one that could not be read.
class ClaimsToBeMesh final : public Object {
  public:
    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kTriObjectClassId; }
    int CanConvertToType(Class_ID) override { return 0; }
    void GetClassName(HostString& name) override { name = "Claims to be a mesh"; }
    void DeleteThis() override { delete this; }
};

TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
    mesh.faces = {0, 1, 2};
    return mesh;
}

bool AreEqual(const TVL::CMesh& a, const TVL::CMesh& b) {
    return a.vertices == b.vertices && a.textureVertices == b.textureVertices &&
           a.faces == b.faces && a.textureFaces == b.textureFaces;
}

Object* Line() {
    return headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 0, 0}})});
}

class MeshSnapshot : public NodeTest {
  protected:
    // Goes back to its node at its end.
    using Lent = std::unique_ptr<TVL::CSnapshot_Mesh, std::function<void(TVL::CSnapshot_Mesh*)>>;
    static Lent Lend(Node& node, double seconds = 0) {
        return {node.AcquireMeshSnapshot(seconds),
                [&node](TVL::CSnapshot_Mesh* snapshot) { node.ReleaseMeshSnapshot(snapshot); }};
    }
    static TVL::CMesh MeshOf(Node& node) { return Lend(node)->GetMesh(); }

    // A node on an object that a person has made, as a Core reaches it.
    static std::unique_ptr<CMAXNode> NodeOn(Object* object) {
        return std::make_unique<CMAXNode>(nullptr, GetCOREInterface()->CreateObjectNode(object));
    }
    static std::unique_ptr<CMAXNode> Ball() { return NodeOn(headless::NewSphere(10, 16)); }

    // Bends with time, and must be converted for that.
    static std::unique_ptr<CMAXNode> BendingBall() {
        return NodeOn(headless::NewBend(headless::NewSphere(10, 16), 45));
    }

    static std::size_t MeshObjects() { return headless::TakeCensus().objects["Mesh"]; }

    static bool HasMesh(TVL::CSnapshot_Mesh& snapshot) {
        return !snapshot.GetMesh().vertices.empty();
    }
};

TEST_F(MeshSnapshot, IsLentByEverythingButCameras) {
    const struct {
        const char* what;
        Object* object;
        bool mesh, faces, lens, shape;
    } kinds[] = {
        {"camera", GetCOREInterface()->CreateCameraObject(0), false, false, true, false},
        {"shape", Line(), true, true, false, true},
        {"sphere", headless::NewSphere(1, 8), true, true, false, false},
        {"triangle mesh", headless::NewGround(1, 1), true, true, false, false},
        {"no triangles", new CustomHelperObject, true, false, false, false},
        {"no true triangles", new ClaimsToBeMesh, true, false, false, false},
    };
    for (const auto& kind : kinds) {
        const auto node = NodeOn(kind.object);
        TVL::CSnapshot_Mesh* const mesh = node->AcquireMeshSnapshot(0);
        TVL::CSnapshot_Helper* const helper = node->AcquireHelperSnapshot();
        TVL::CSnapshot_Lens* const lens = node->AcquireLensSnapshot(0);
        TVL::CSnapshot_Shape* const shape = node->AcquireShapeSnapshot(0);
        SCOPED_TRACE(kind.what);
        EXPECT_EQ(mesh != nullptr, kind.mesh);
        EXPECT_EQ(helper != nullptr, kind.mesh);
        EXPECT_EQ(lens != nullptr, kind.lens);
        EXPECT_EQ(shape != nullptr, kind.shape);
        if (mesh && !kind.faces) {
            mesh->SetMesh(Triangle());
            helper->SetMesh(Triangle());
            EXPECT_FALSE(mesh->IntersectRay({1, 1, 9}, {0, 0, -1}, nullptr, nullptr));
        }
        EXPECT_EQ(mesh && HasMesh(*mesh), kind.faces);
        node->ReleaseMeshSnapshot(mesh);
        node->ReleaseHelperSnapshot(helper);
        node->ReleaseLensSnapshot(lens);
        node->ReleaseShapeSnapshot(shape);
    }
}

TEST_F(MeshSnapshot, ConvertsANodeOnceForAllTimesOfARecording) {
    const auto ball = BendingBall();
    adaptor.BeginRecordingUnkeyed({});
    {
        const Lent first = Lend(*ball, 1);
        const Lent second = Lend(*ball, 2);
        EXPECT_EQ(MeshObjects(), 1U);
        first->SetMesh(Triangle());
        EXPECT_EQ(second->GetMesh().faces, Triangle().faces);
    }

    // The next recording sees the node as it is, at its own first time.
    adaptor.EndRecording();
    EXPECT_EQ(MeshObjects(), 0U);
    EXPECT_NE(Lend(*ball, 1)->GetMesh().vertices, MeshOf(*BendingBall()).vertices);
    adaptor.BeginRecording({&rig});
    EXPECT_EQ(MeshObjects(), 0U);  // what was converted between recordings is freed as well
    adaptor.EndRecording();
}

TEST_F(MeshSnapshot, ConvertsAnewAtEachTimeWhereMeshesAreDynamic) {
    world.SetOption(TVL::kDynamicMeshes, true);
    const auto ball = BendingBall();
    TVL::CSnapshot_Mesh* const first = ball->AcquireMeshSnapshot(1);
    TVL::CSnapshot_Mesh* const second = ball->AcquireMeshSnapshot(2);
    EXPECT_EQ(MeshObjects(), 2U);
    EXPECT_NE(first->GetMesh().vertices, second->GetMesh().vertices);
    ball->ReleaseMeshSnapshot(second);
    EXPECT_EQ(ball->AcquireMeshSnapshot(1), second);
    EXPECT_EQ(MeshObjects(), 2U);
    EXPECT_EQ(first->GetMesh().vertices, second->GetMesh().vertices);

    // The option is asked each time, and a recording's end takes no owned mesh away.
    adaptor.EndRecording();
    EXPECT_TRUE(HasMesh(*second));
    world.SetOption(TVL::kDynamicMeshes, false);
    ball->ReleaseMeshSnapshot(first);
    ball->ReleaseMeshSnapshot(second);
    const Lent shared[] = {Lend(*ball, 1), Lend(*ball, 2)};
    EXPECT_EQ(shared[0].get(), second);
    EXPECT_EQ(MeshObjects(), 1U);
}

TEST_F(MeshSnapshot, WorksOnTheNodesOwnTriangleMesh) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    const Lent snapshot = Lend(*hip);
    TVL::CMesh twoFaces = Triangle();
    twoFaces.faces = {0, 1, 2, 0, 2, 1};
    snapshot->SetMesh(twoFaces);
    EXPECT_EQ(MeshOf(*hip).faces, twoFaces.faces);
    adaptor.EndRecording();
    EXPECT_EQ(snapshot->GetMesh().faces, twoFaces.faces);
    EXPECT_EQ(MeshObjects(), 1U);

    // Each sees its own time, also where the host has one mesh for all times.
    TriObject* const upright = CreateNewTriObject();
    WriteMesh(MeshOf(*Ball()), upright->GetMesh());
    const auto bending = NodeOn(headless::NewBend(upright, 45));
    const Lent early = Lend(*bending, 1);
    const Lent late = Lend(*bending, 2);
    EXPECT_NE(early->GetMesh().vertices, late->GetMesh().vertices);
}

TEST_F(MeshSnapshot, GivesAMillionFacesBackEqualButForTheOneTextureVertex) {
    TVL::CMesh mesh = MeshOf(*NodeOn(headless::NewSphere(100, 1024)));
    EXPECT_GT(mesh.FaceCount(), 1'000'000);
    EXPECT_FALSE(mesh.textureVertices.empty());
    EXPECT_TRUE(AreEqual(MeshOf(*Helper("Textured", nullptr, mesh)), mesh));
    mesh.textureVertices.clear();
    const TVL::CMesh untextured = MeshOf(*Helper("Untextured", nullptr, mesh));
    mesh.textureVertices = {{0, 0, 0}};
    mesh.textureFaces.assign(mesh.faces.size(), 0);
    EXPECT_TRUE(AreEqual(untextured, mesh));

    // A host mesh without any, whatever its texture faces say, and one that lacks some of these.
    TriObject* const bare = headless::NewGround(2, 1);
    const auto node = NodeOn(bare);
    bare->GetMesh().tvFace.resize(1);
    EXPECT_EQ(MeshOf(*node).textureFaces, (std::vector<int>{0, 1, 3, 0, 0, 0}));
    bare->GetMesh().setNumTVerts(0);
    EXPECT_TRUE(MeshOf(*node).textureVertices.empty());
    EXPECT_EQ(MeshOf(*node).textureFaces, std::vector<int>(6, 0));
}

TEST_F(MeshSnapshot, CastsRaysInTheObjectsSpace) {
    const auto ball = NodeOn(headless::NewSphere(100, 1024));
    ball->HostNode()->SetNodeTM(0, MovedBy(1000));
    const Lent snapshot = Lend(*ball);
    double distance = 0;
    Place normal{};
    for (const Place& up : {Place{0, 0, 1}, {0.36, -0.48, 0.8}, {-0.8, 0.6, 0}}) {
        const Place origin{300 * up[0], 300 * up[1], 300 * up[2]};
        const Place direction{-2 * up[0], -2 * up[1], -2 * up[2]};
        ASSERT_TRUE(snapshot->IntersectRay(origin, direction, &distance, &normal));
        EXPECT_NEAR(distance, 100, 0.001);  // what facets lie below the sphere
        EXPECT_GT(normal[0] * up[0] + normal[1] * up[1] + normal[2] * up[2], 0.9999);
    }
    snapshot->SetMesh(Triangle());
    EXPECT_TRUE(snapshot->IntersectRay({1, 1, 9}, {0, 0, -1}, nullptr, nullptr));
    EXPECT_FALSE(snapshot->IntersectRay({1, 1, 9}, {0, 0, 1}, nullptr, nullptr));
    for (const double odd : {double{NAN}, 1e300, HUGE_VAL})
        EXPECT_FALSE(snapshot->IntersectRay({odd, 1, 9}, {0, odd, -1}, &distance, &normal));
    snapshot->SetMesh({});
    EXPECT_FALSE(snapshot->IntersectRay({1, 1, 9}, {0, 0, -1}, &distance, &normal));
}

// A snapshot that is still out reads as having no mesh, also after the node was converted again.
TEST_F(MeshSnapshot, LosesACachedMeshWithTheCache) {
    const auto ball = Ball();
    const std::function<void()> endings[] = {[&] { adaptor.BeginRecording({}); },
                                             [&] { adaptor.EndRecording(); }, [] { SweepNodes(); }};
    for (const auto& end : endings) {
        const Lent lost = Lend(*ball);
        EXPECT_TRUE(HasMesh(*lost));
        end();
        EXPECT_FALSE(HasMesh(*lost));
        lost->SetMesh(Triangle());
        EXPECT_FALSE(lost->IntersectRay({0, 0, 30}, {0, 0, -1}, nullptr, nullptr));
        EXPECT_GT(MeshOf(*ball).FaceCount(), 1);
        EXPECT_FALSE(HasMesh(*lost));
    }
    // The next scene can have a node of the same handle at the same address.
    world.Session().NewScene();
    EXPECT_EQ(MeshObjects(), 0U);
}

TEST_F(MeshSnapshot, LosesItsMeshWithTheNodeOrTheObject) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    const auto ball = Ball();
    std::vector<Lent> all;
    all.push_back(Lend(*hip));
    all.push_back(Lend(*ball));
    world.SetOption(TVL::kDynamicMeshes, true);
    all.push_back(Lend(*ball));

    InGroup("Remove", [&] {
        GetCOREInterface()->DeleteNode(ball->HostNode());
        GetCOREInterface()->DeleteNode(Host("Rig_Hip"));
    });
    for (const Lent& snapshot : all)
        EXPECT_FALSE(HasMesh(*snapshot));
    ASSERT_TRUE(world.Session().Undo());
    for (const Lent& snapshot : all)
        EXPECT_TRUE(HasMesh(*snapshot));

    adaptor.FlushUndoBuffer();
    Host("Rig_Hip")->ReplaceReference(1, headless::NewSphere(1, 8));  // frees the triangle mesh
    EXPECT_FALSE(HasMesh(*all[0]));
    all[0]->SetMesh(Triangle());
}

TEST_F(MeshSnapshot, IsLeftWithoutANodeInTheOrderOfThePools) {
    world.SetOption(TVL::kDynamicMeshes, true);
    TVL::CSnapshot_Mesh* mesh = nullptr;
    TVL::CSnapshot_Shape* shape = nullptr;
    {
        const auto line = NodeOn(Line());
        mesh = line->AcquireMeshSnapshot(0);
        shape = line->AcquireShapeSnapshot(0);
    }
    EXPECT_EQ(MeshObjects(), 0U);
    EXPECT_FALSE(HasMesh(*mesh));
    EXPECT_EQ(shape->GetCurveCount(), 0);
    EXPECT_EQ(Camera("Eye")->AcquireLensSnapshot(3)->GetTime(), 3);
    Find("Eye")->Destroy();
    const std::string log = Trace();
    const std::size_t meshReport = log.find("Encountered still acquired mesh snapshot");
    EXPECT_NE(meshReport, std::string::npos);
    EXPECT_LT(meshReport, log.find("Encountered still acquired shape snapshot"));
    EXPECT_NE(log.find("Encountered still acquired lens snapshot"), std::string::npos);
    EXPECT_EQ(SweepNodes().snapshots, 3);
}

}  // namespace
