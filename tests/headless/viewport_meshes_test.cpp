#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "host/node.h"
#include "tests/headless/viewport_world.h"

namespace {

// A camera 100 above the ground that looks down; at the ground two pixels are one host unit, and
// the middle of the picture is the origin.
class ViewportMeshes : public ViewportWorld {
  protected:
    ViewportMeshes() {
        settings.width = settings.height = 400;
        settings.camera = "eye";
        CameraObject* const camera = host.CreateCameraObject(0);
        INode* const eye = host.CreateObjectNode(camera);
        eye->SetName("eye");
        camera->SetFOV(0, std::numbers::pi_v<float> / 2);
        Place(eye, {0, 0, 100});
    }

    // A node that shows one triangle with three edges, counter-clockwise from above.
    INode* AddTriangle(const Point3& a, const Point3& b, const Point3& c) {
        INode* const node = Add("triangle");
        Mesh& mesh = MeshOf(node);
        mesh.setNumVerts(3);
        mesh.setVert(0, a);
        mesh.setVert(1, b);
        mesh.setVert(2, c);
        AddFace(mesh, 0, 1, 2);
        return node;
    }

    static Mesh& MeshOf(INode* node) {
        return static_cast<TriObject*>(node->GetObjectRef())->GetMesh();
    }

    static Face& AddFace(Mesh& mesh, int a, int b, int c) {
        mesh.setNumFaces(mesh.getNumFaces() + 1, 1);
        mesh.faces.back().setVerts(a, b, c);
        mesh.faces.back().setEdgeVisFlags(1, 1, 1);
        return mesh.faces.back();
    }

    bool Hits(const HitRegion& region) const {
        return !headless::NodesHit(settings, 0, region).empty();
    }
    bool HitsPoint(int x, int y) const { return Hits({HITTYPE_POINT, 0, 0, {{x, y}, {}}}); }
};

TEST_F(ViewportMeshes, AreHitWhereTheyShow) {
    INode* const node = AddTriangle({0, 0, 0}, {50, 0, 0}, {0, 50, 0});  // (200,200) to (300,100)
    EXPECT_TRUE(HitsPoint(210, 190));
    EXPECT_TRUE(HitsPoint(196, 150));
    EXPECT_FALSE(HitsPoint(195, 150));
    EXPECT_FALSE(HitsPoint(210, 205));
    struct Case {
        HitRegion region;
        bool hits;
    };
    for (const Case& drag : {Case{{HITTYPE_RECT, 1, 0, {{220, 170}, {225, 175}}}, true},
                             {{HITTYPE_RECT, 0, 0, {{220, 170}, {225, 175}}}, false},
                             {{HITTYPE_RECT, 1, 0, {{310, 205}, {290, 195}}}, true},
                             {{HITTYPE_RECT, 1, 0, {{280, 110}, {290, 120}}}, false},
                             {{HITTYPE_RECT, 0, 0, {{301, 201}, {199, 99}}}, true},
                             {{HITTYPE_RECT, 0, 0, {{299, 201}, {199, 99}}}, false},
                             {{77, 1, 100, {{210, 190}, {220, 180}}}, false}})
        EXPECT_EQ(Hits(drag.region), drag.hits) << drag.region.corners[0].x;

    settings.isWireframe = true;
    EXPECT_FALSE(HitsPoint(220, 180));
    EXPECT_TRUE(HitsPoint(250, 200));
    node->Hide(true);
    EXPECT_FALSE(HitsPoint(250, 200));
    settings.camera = "nobody";
    EXPECT_FALSE(HitsPoint(250, 200));
}

TEST_F(ViewportMeshes, ReachBehindTheViewerWithoutBeingHitThere) {
    AddTriangle({0, 0, 0}, {50, 0, 0}, {20, 60, 400});
    AddTriangle({0, -50, 300}, {50, -50, 300}, {0, -90, 300});
    constexpr HitRegion kAll{HITTYPE_RECT, 0, 0, {{-99999, -99999}, {99999, 99999}}};
    constexpr HitRegion kSome{HITTYPE_RECT, 1, 0, {{-99999, -99999}, {99999, 99999}}};
    EXPECT_EQ(headless::NodesHit(settings, 0, kSome).size(), 1U);
    EXPECT_TRUE(headless::NodesHit(settings, 0, kAll).empty());
    EXPECT_TRUE(HitsPoint(240, 190));
    EXPECT_FALSE(HitsPoint(240, 215));
}

TEST_F(ViewportMeshes, LeaveOutFacesThatAreNowhereAndDrawSharedEdgesOnce) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    INode* const node = AddTriangle({0, 0, 0}, {50, 0, 0}, {0, 50, 0});
    Mesh& mesh = MeshOf(node);
    mesh.setNumVerts(5, 1);
    mesh.setVert(3, {50, 50, 0});
    mesh.setVert(4, {kNaN, 0, 0});
    AddFace(mesh, 1, 3, 2);
    AddFace(mesh, 0, 1, 4);
    AddFace(mesh, 0, 1, 77);
    EXPECT_EQ(Drawn(true).size(), 2 * 3U);
    settings.isWireframe = true;
    EXPECT_EQ(Drawn(false).size(), 2 * 5U);
    Place(node, {std::numeric_limits<float>::infinity(), 0, 0});
    EXPECT_TRUE(Drawn(false).empty());
    EXPECT_FALSE(HitsPoint(210, 190));
}

TEST_F(ViewportMeshes, AreSmoothWithinAGroupAndKeepTheirOutsideInAMirror) {
    INode* const node = AddTriangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
    Mesh& mesh = MeshOf(node);
    mesh.setNumVerts(4, 1);
    mesh.setVert(3, {0, 0, -1});
    AddFace(mesh, 0, 3, 1);  // looks along -y
    const auto normalAtStart = [&](std::size_t vertex) { return Drawn(true).at(vertex).normal; };
    EXPECT_EQ(normalAtStart(0), Point3(0, 0, 1));
    EXPECT_EQ(normalAtStart(3), Point3(0, -1, 0));
    mesh.faces[0].setSmGroup(0b100);
    mesh.faces[1].setSmGroup(0b110);
    const float half = std::sqrt(0.5F);
    EXPECT_LT(Length(normalAtStart(0) - Point3(0, -half, half)), 1e-6F);
    EXPECT_EQ(normalAtStart(2), Point3(0, 0, 1)) << "a corner of one face alone";
    mesh.faces[1].setSmGroup(0b010);
    EXPECT_EQ(normalAtStart(0), Point3(0, 0, 1));

    Matrix3 mirror;
    mirror.Scale({-1, 1, 1});
    node->SetNodeTM(0, mirror);
    EXPECT_EQ(normalAtStart(0), Point3(0, 0, 1));
}

}  // namespace
