#include "nodes/node_lifetime.h"
#include "objects/mesh_exchange.h"
#include "tests/nodes/node_test.h"

namespace {

auto Tables(const TVL::CMesh& mesh) {
    return std::tie(mesh.vertices, mesh.textureVertices, mesh.faces, mesh.textureFaces);
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
    static std::size_t MeshObjects() { return headless::TakeCensus().objects["Mesh"]; }
    static bool HasMesh(const Lent& snapshot) { return !snapshot->GetMesh().vertices.empty(); }
    static bool IsHit(const Lent& snapshot) {
        return snapshot->IntersectRay({1, 1, 30}, {0, 0, -1}, nullptr, nullptr);
    }

    const std::unique_ptr<CMAXNode> ball =
        NodeOn(headless::NewBend(headless::NewSphere(10, 16), 45));
};

TEST_F(MeshSnapshot, ConvertsANodeOnceForARecordingOrAnewAtEachTimeWhereMeshesAreDynamic) {
    const TVL::CMesh atOne = Lend(*ball, 1)->GetMesh();
    for (const bool isDynamic : {false, true, false}) {
        world.SetOption(TVL::kDynamicMeshes, isDynamic);
        adaptor.BeginRecordingUnkeyed({});
        const Lent first = Lend(*ball, 1);
        Lent second = Lend(*ball, 2);
        EXPECT_EQ(first->GetMesh().vertices, atOne.vertices);
        EXPECT_EQ(second->GetMesh().vertices == atOne.vertices, !isDynamic);
        second.reset();
        second = Lend(*ball, 1);
        EXPECT_EQ(second->GetMesh().vertices, atOne.vertices);
        EXPECT_EQ(MeshObjects(), isDynamic ? 2U : 1U);
        first->SetMesh(Triangle());
        EXPECT_EQ(second->GetMesh().vertices == atOne.vertices, isDynamic);
        adaptor.EndRecording();
        EXPECT_EQ(HasMesh(first), isDynamic);  // which owns its mesh
    }
    EXPECT_EQ(MeshObjects(), 0U);
}

TEST_F(MeshSnapshot, WorksOnTheNodesOwnTriangleMeshAtItsOwnTime) {
    Node* const hip = Helper("Hip", nullptr, Triangle());
    const Lent snapshot = Lend(*hip);
    TVL::CMesh twoFaces = Triangle();
    twoFaces.faces = {0, 1, 2, 0, 2, 1};
    snapshot->SetMesh(twoFaces);
    adaptor.EndRecording();
    EXPECT_EQ(MeshOf(*hip).faces, twoFaces.faces);
    EXPECT_EQ(snapshot->GetMesh().faces, twoFaces.faces);
    EXPECT_EQ(MeshObjects(), 1U);

    TriObject* const upright = CreateNewTriObject();
    WriteMesh(MeshOf(*ball), upright->GetMesh());
    const auto bending = NodeOn(headless::NewBend(upright, 45));
    const Lent early = Lend(*bending, 1);
    EXPECT_NE(early->GetMesh().vertices, Lend(*bending, 2)->GetMesh().vertices);
}

TEST_F(MeshSnapshot, GivesAMillionFacesBackEqualAndCastsRaysInTheObjectsSpace) {
    const auto large = NodeOn(headless::NewSphere(100, 1024));
    large->HostNode()->SetNodeTM(0, MovedBy(1000));
    const Lent snapshot = Lend(*large);
    TVL::CMesh mesh = snapshot->GetMesh();
    EXPECT_GT(mesh.FaceCount(), 1'000'000);
    EXPECT_TRUE(Tables(MeshOf(*Helper("Textured", nullptr, mesh))) == Tables(mesh));
    mesh.textureVertices.clear();
    const TVL::CMesh untextured = MeshOf(*Helper("Untextured", nullptr, mesh));
    mesh.textureVertices = {{0, 0, 0}};
    mesh.textureFaces.assign(mesh.faces.size(), 0);
    EXPECT_TRUE(Tables(untextured) == Tables(mesh));

    double distance = 0;
    Place normal{};
    for (const double side : {1.0, -1.0}) {
        const Place up = {0.36 * side, -0.48 * side, 0.8 * side};
        ASSERT_TRUE(snapshot->IntersectRay({300 * up[0], 300 * up[1], 300 * up[2]},
                                           {-up[0], -up[1], -up[2]}, &distance, &normal));
        EXPECT_NEAR(distance, 200, 0.001);  // what facets lie below the sphere
        EXPECT_GT(normal[0] * up[0] + normal[1] * up[1] + normal[2] * up[2], 0.9999);
    }
    snapshot->SetMesh(Triangle());
    EXPECT_TRUE(IsHit(snapshot));
    EXPECT_FALSE(snapshot->IntersectRay({1, 1, 30}, {0, 0, 1}, nullptr, nullptr));
    snapshot->SetMesh({});
    EXPECT_FALSE(IsHit(snapshot));
}

// A snapshot that is still out reads as having no mesh, also after the node was converted again.
TEST_F(MeshSnapshot, LosesItsMeshWithTheCacheTheNodeOrTheObject) {
    const std::function<void()> endings[] = {[&] { adaptor.BeginRecording({}); },
                                             [&] { adaptor.EndRecording(); }, [] { SweepNodes(); }};
    for (const auto& end : endings) {
        const Lent lost = Lend(*ball);
        EXPECT_TRUE(HasMesh(lost));
        end();
        lost->SetMesh(Triangle());
        EXPECT_FALSE(IsHit(lost));
        EXPECT_GT(MeshOf(*ball).FaceCount(), 1);
        EXPECT_FALSE(HasMesh(lost));
    }

    Node* const hip = Helper("Hip", nullptr, Triangle());
    const Lent cached = Lend(*ball);
    world.SetOption(TVL::kDynamicMeshes, true);
    const Lent all[] = {Lend(*hip), Lend(*ball)};
    const auto count = [&] { return HasMesh(all[0]) + HasMesh(all[1]) + HasMesh(cached); };
    InGroup("Remove", [&] {
        GetCOREInterface()->DeleteNode(ball->HostNode());
        DeleteInHost("Rig_Hip");
    });
    EXPECT_EQ(count(), 0);
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(count(), 3);

    adaptor.FlushUndoBuffer();
    Host("Rig_Hip")->ReplaceReference(1, headless::NewGround(1, 1));  // frees the triangle mesh
    EXPECT_FALSE(HasMesh(all[0]));
    all[0]->SetMesh(Triangle());

    // The next scene can have a node of the same handle at the same address.
    world.Session().NewScene();
    EXPECT_EQ(MeshObjects(), 1U);  // what a snapshot owns
}

}  // namespace
