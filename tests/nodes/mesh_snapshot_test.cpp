#include <climits>
#include <cmath>
#include <memory>

#include "headless/primitives.h"
#include "nodes/max_node.h"
#include "nodes/node_sweep.h"
#include "nodes/node_test.h"
#include "objects/custom_helper_object.h"
#include "objects/mesh_exchange.h"
#include "tvl/log.h"

namespace {

using Place = std::array<double, 3>;

// Says that it is a triangle mesh, as what stands in for one that could not be read.
class ClaimsToBeMesh final : public Object {
  public:
    SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
    Class_ID ClassID() override { return kTriObjectClassId; }
    void GetClassName(HostString& name) override { name = "Claims to be a mesh"; }
    void DeleteThis() override { delete this; }
};

TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
    mesh.faces = {0, 1, 2};
    return mesh;
}

class MeshSnapshot : public NodeTest {
  protected:
    static constexpr int kDynamicMeshes = 1030;

    // A node on an object that a person has made, as a Core reaches it.
    static std::unique_ptr<CMAXNode> NodeOn(Object* object) {
        return std::make_unique<CMAXNode>(nullptr, GetCOREInterface()->CreateObjectNode(object));
    }
    static std::unique_ptr<CMAXNode> Ball() { return NodeOn(headless::NewSphere(10, 16)); }

    // Bends with time, and must be converted for that.
    static std::unique_ptr<CMAXNode> BendingBall() {
        return NodeOn(headless::NewBend(headless::NewSphere(10, 16), 45));
    }

    static TVL::CMesh MeshOf(Node& node, double seconds = 0) {
        TVL::CSnapshot_Mesh* const snapshot = node.AcquireMeshSnapshot(seconds);
        TVL::CMesh mesh = snapshot->GetMesh();
        node.ReleaseMeshSnapshot(snapshot);
        return mesh;
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
        {"shape", headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 0, 0}})}), true,
         true, false, true},
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
        EXPECT_EQ(mesh != nullptr, kind.mesh) << kind.what;
        EXPECT_EQ(helper != nullptr, kind.mesh) << kind.what;
        EXPECT_EQ(lens != nullptr, kind.lens) << kind.what;
        EXPECT_EQ(shape != nullptr, kind.shape) << kind.what;
        if (mesh) {
            EXPECT_EQ(mesh->GetMesh().FaceCount() > 0, kind.faces) << kind.what;
            if (!kind.faces) {
                mesh->SetMesh(Triangle());
                helper->SetMesh(Triangle());
                EXPECT_FALSE(mesh->IntersectRay({1, 1, 9}, {0, 0, -1}, nullptr, nullptr));
                EXPECT_FALSE(HasMesh(*mesh)) << kind.what;
            }
        }
        node->ReleaseMeshSnapshot(mesh);
        node->ReleaseHelperSnapshot(helper);
        node->ReleaseLensSnapshot(lens);
        node->ReleaseShapeSnapshot(shape);
    }
}

TEST_F(MeshSnapshot, ConvertsANodeOnceForAllTimesOfARecording) {
    const auto ball = BendingBall();
    adaptor.BeginRecordingUnkeyed({});
    const std::size_t before = MeshObjects();
    TVL::CSnapshot_Mesh* const first = ball->AcquireMeshSnapshot(1);
    TVL::CSnapshot_Mesh* const second = ball->AcquireMeshSnapshot(2);
    EXPECT_EQ(MeshObjects(), before + 1);
    EXPECT_EQ(first->GetMesh().vertices, second->GetMesh().vertices);
    first->SetMesh(Triangle());
    EXPECT_EQ(second->GetMesh().faces, (std::vector<int>{0, 1, 2}));
    ball->ReleaseMeshSnapshot(first);
    ball->ReleaseMeshSnapshot(second);

    // The next recording sees the node as it is, at its own first time.
    adaptor.EndRecording();
    EXPECT_EQ(MeshObjects(), before);
    EXPECT_NE(MeshOf(*ball, 1).vertices, MeshOf(*BendingBall(), 0).vertices);
    adaptor.BeginRecording({&rig});
    EXPECT_EQ(MeshObjects(), before);  // what was converted between recordings is freed as well
    adaptor.EndRecording();
}

TEST_F(MeshSnapshot, ConvertsAnewAtEachTimeWhereMeshesAreDynamic) {
    world.SetOption(kDynamicMeshes, true);
    const auto ball = BendingBall();
    const std::size_t before = MeshObjects();
    TVL::CSnapshot_Mesh* const first = ball->AcquireMeshSnapshot(1);
    TVL::CSnapshot_Mesh* const second = ball->AcquireMeshSnapshot(2);
    EXPECT_EQ(MeshObjects(), before + 2);
    EXPECT_NE(first->GetMesh().vertices, second->GetMesh().vertices);
    ball->ReleaseMeshSnapshot(second);
    EXPECT_EQ(ball->AcquireMeshSnapshot(1), second);
    EXPECT_EQ(MeshObjects(), before + 2);
    EXPECT_EQ(first->GetMesh().vertices, second->GetMesh().vertices);

    // The option is asked each time, and a recording's end takes no owned mesh away.
    adaptor.EndRecording();
    EXPECT_TRUE(HasMesh(*second));
    world.SetOption(kDynamicMeshes, false);
    ball->ReleaseMeshSnapshot(second);
    EXPECT_EQ(ball->AcquireMeshSnapshot(1), second);
    ball->ReleaseMeshSnapshot(first);
    EXPECT_EQ(ball->AcquireMeshSnapshot(2), first);
    EXPECT_EQ(MeshObjects(), before + 1);
    ball->ReleaseMeshSnapshot(first);
    ball->ReleaseMeshSnapshot(second);
}

TEST_F(MeshSnapshot, WorksOnTheNodesOwnTriangleMesh) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    const std::size_t before = MeshObjects();
    TVL::CSnapshot_Mesh* const snapshot = hip->AcquireMeshSnapshot(0);
    TVL::CMesh square = Triangle();
    square.vertices.push_back({4, 4, 0});
    square.faces = {0, 1, 2, 1, 3, 2};
    snapshot->SetMesh(square);
    EXPECT_EQ(MeshOf(*hip).faces, square.faces);
    adaptor.EndRecording();
    EXPECT_EQ(snapshot->GetMesh().faces, square.faces);
    EXPECT_EQ(MeshObjects(), before);
    hip->ReleaseMeshSnapshot(snapshot);

    // Evaluated again at each acquisition, whatever was converted.
    TriObject* const upright = CreateNewTriObject();
    WriteMesh(MeshOf(*Ball()), upright->GetMesh());
    const auto bending = NodeOn(headless::NewBend(upright, 45));
    EXPECT_NE(MeshOf(*bending, 1).vertices, MeshOf(*bending, 2).vertices);
}

TEST_F(MeshSnapshot, GivesAMeshBackEqualButForTheOneTextureVertex) {
    TVL::CMesh mesh = MeshOf(*NodeOn(headless::NewSphere(100, 64)));
    EXPECT_FALSE(mesh.textureVertices.empty());
    Node* const textured = Helper("Textured", nullptr, mesh);
    EXPECT_EQ(MeshOf(*textured).vertices, mesh.vertices);
    EXPECT_EQ(MeshOf(*textured).faces, mesh.faces);
    EXPECT_EQ(MeshOf(*textured).textureVertices, mesh.textureVertices);
    EXPECT_EQ(MeshOf(*textured).textureFaces, mesh.textureFaces);

    mesh.textureVertices.clear();
    const std::vector<int> noTexture(mesh.faces.size(), 0);
    const TVL::CMesh untextured = MeshOf(*Helper("Untextured", nullptr, mesh));
    EXPECT_EQ(untextured.vertices, mesh.vertices);
    EXPECT_EQ(untextured.faces, mesh.faces);
    EXPECT_EQ(untextured.textureVertices, (std::vector<Place>{{0, 0, 0}}));
    EXPECT_EQ(untextured.textureFaces, noTexture);

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
    const auto ball = Ball();
    TVL::CSnapshot_Mesh* const snapshot = ball->AcquireMeshSnapshot(0);
    double distance = 0;
    Place normal{};
    ASSERT_TRUE(snapshot->IntersectRay({0.1, 0.2, 30}, {0, 0, -1}, &distance, &normal));
    EXPECT_NEAR(distance, 20, 0.2);
    EXPECT_GT(normal[2], 0.9);
    EXPECT_TRUE(snapshot->IntersectRay({0.1, 0.2, 30}, {0, 0, -1}, nullptr, nullptr));
    EXPECT_FALSE(snapshot->IntersectRay({0.1, 0.2, 30}, {0, 0, 1}, nullptr, nullptr));
    for (const double odd : {double{NAN}, 1e300, HUGE_VAL})
        EXPECT_FALSE(snapshot->IntersectRay({odd, 0, 30}, {0, odd, -1}, &distance, &normal));
    snapshot->SetMesh({});
    EXPECT_FALSE(snapshot->IntersectRay({0.1, 0.2, 30}, {0, 0, -1}, &distance, &normal));
    ball->ReleaseMeshSnapshot(snapshot);
}

// A snapshot that is still out reads as having no mesh, also after the node was converted again.
TEST_F(MeshSnapshot, LosesACachedMeshWithTheCache) {
    const auto ball = Ball();
    const std::function<void()> endings[] = {
        [&] { adaptor.BeginRecording({}); },
        [&] { adaptor.EndRecording(); },
        [] { SweepNodes(); },
    };
    for (const auto& end : endings) {
        TVL::CSnapshot_Mesh* const lost = ball->AcquireMeshSnapshot(0);
        EXPECT_TRUE(HasMesh(*lost));
        end();
        EXPECT_FALSE(HasMesh(*lost));
        lost->SetMesh(Triangle());
        EXPECT_FALSE(lost->IntersectRay({0, 0, 30}, {0, 0, -1}, nullptr, nullptr));
        EXPECT_GT(MeshOf(*ball).FaceCount(), 1);
        EXPECT_FALSE(HasMesh(*lost));
        ball->ReleaseMeshSnapshot(lost);
    }
    // The next scene can have a node of the same handle at the same address.
    world.Session().NewScene();
    EXPECT_EQ(MeshObjects(), 0U);
}

TEST_F(MeshSnapshot, LosesItsMeshWithTheNodeOrTheObject) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    const auto ball = Ball();
    TVL::CSnapshot_Mesh* const own = hip->AcquireMeshSnapshot(0);
    TVL::CSnapshot_Mesh* const cached = ball->AcquireMeshSnapshot(0);
    world.SetOption(kDynamicMeshes, true);
    TVL::CSnapshot_Mesh* const owned = ball->AcquireMeshSnapshot(0);
    const std::vector<TVL::CSnapshot_Mesh*> all{own, cached, owned};

    InGroup("Remove", [&] {
        GetCOREInterface()->DeleteNode(ball->HostNode());
        GetCOREInterface()->DeleteNode(Host("Rig_Hip"));
    });
    for (TVL::CSnapshot_Mesh* snapshot : all)
        EXPECT_FALSE(HasMesh(*snapshot));
    ASSERT_TRUE(world.Session().Undo());
    for (TVL::CSnapshot_Mesh* snapshot : all)
        EXPECT_TRUE(HasMesh(*snapshot));

    adaptor.FlushUndoBuffer();
    Host("Rig_Hip")->ReplaceReference(1, headless::NewSphere(1, 8));  // frees the triangle mesh
    EXPECT_FALSE(HasMesh(*own));
    own->SetMesh(Triangle());
    hip->ReleaseMeshSnapshot(own);
    ball->ReleaseMeshSnapshot(cached);
    ball->ReleaseMeshSnapshot(owned);
}

TEST_F(MeshSnapshot, IsLeftWithoutANodeInTheOrderOfThePools) {
    world.SetOption(kDynamicMeshes, true);
    TVL::CSnapshot_Mesh* mesh = nullptr;
    TVL::CSnapshot_Shape* shape = nullptr;
    const std::size_t before = MeshObjects();
    {
        const auto lines =
            NodeOn(headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 0, 0}})}));
        mesh = lines->AcquireMeshSnapshot(0);
        shape = lines->AcquireShapeSnapshot(0);
        EXPECT_EQ(MeshObjects(), before + 1);
    }
    EXPECT_EQ(MeshObjects(), before);
    EXPECT_FALSE(HasMesh(*mesh));
    EXPECT_EQ(shape->GetCurveCount(), 0);
    EXPECT_EQ(Camera("Eye")->AcquireLensSnapshot(3)->GetTime(), 3);
    Find("Eye")->Destroy();
    const std::string log = TVL::Log::GetInstance()->GetBufferedText();
    const std::size_t meshReport = log.find("Encountered still acquired mesh snapshot");
    EXPECT_NE(meshReport, std::string::npos);
    EXPECT_LT(meshReport, log.find("Encountered still acquired shape snapshot"));
    EXPECT_NE(log.find("Encountered still acquired lens snapshot"), std::string::npos);
    EXPECT_EQ(SweepNodes().snapshots, 3);
}

TEST_F(MeshSnapshot, IsNotLentByANodeThatTheCoreEndsWhileItIsAsked) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    Helper("Knee", nullptr, Triangle());
    world.Core().onOptionAsked = [&](int) { hip->Destroy(); };
    EXPECT_EQ(hip->AcquireMeshSnapshot(0), nullptr);
    world.Core().onOptionAsked = [&](int) {
        if (INode* knee = Host("Rig_Knee")) GetCOREInterface()->DeleteNode(knee);
    };
    EXPECT_EQ(Find("Knee")->AcquireMeshSnapshot(0), nullptr);
    world.Core().onOptionAsked = nullptr;
}

}  // namespace
