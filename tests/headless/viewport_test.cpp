#include "headless/viewport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "host/node.h"
#include "tests/headless/host_world.h"

namespace {

using headless::Colour;
using headless::Corner;
using headless::DrawVertex;

constexpr HitRegion kWhollyInView{HITTYPE_RECT, 0, 0, {{-9999, -9999}, {9999, 9999}}};
constexpr HitRegion kPartlyInView{HITTYPE_RECT, 1, 0, {{-9999, -9999}, {9999, 9999}}};

// A viewport in which nothing but the nodes shows.
class ViewportTest : public HostWorld {
  protected:
    ViewportTest() { settings.showsGrid = false; }

    // From 100 above the ground, where two pixels are one host unit; (200, 200) is the origin.
    void LookDown() {
        settings.width = settings.height = 400;
        settings.camera = "eye";
        CameraObject* const camera = host.CreateCameraObject(0);
        INode* const eye = host.CreateObjectNode(camera);
        eye->SetName("eye");
        camera->SetFOV(0, std::numbers::pi_v<float> / 2);
        Place(eye, {0, 0, 100});
    }

    // A node that shows these faces with all of their edges. Upwards look those whose corners go
    // counter-clockwise from above.
    INode* AddMesh(const std::vector<Point3>& places,
                   const std::vector<std::array<int, 3>>& faces = {{0, 1, 2}}) {
        INode* const node = Add("mesh");
        Mesh& mesh = MeshOf(node);
        mesh.verts = places;
        for (const auto& [a, b, c] : faces) {
            mesh.faces.emplace_back().setVerts(a, b, c);
            mesh.faces.back().setEdgeVisFlags(1, 1, 1);
        }
        return node;
    }

    static Mesh& MeshOf(INode* node) {
        return static_cast<TriObject*>(node->GetObjectRef())->GetMesh();
    }

    // The corners of all triangles or of all lines that are drawn.
    std::vector<DrawVertex> Drawn(bool isTriangles) const {
        std::vector<DrawVertex> all;
        for (const headless::DrawBatch& batch : headless::DrawScene(settings, 0).list.batches)
            if (batch.isTriangles == isTriangles)
                all.insert(all.end(), batch.vertices.begin(), batch.vertices.end());
        return all;
    }

    using Handles = std::vector<std::uint32_t>;
    Handles Hit(const HitRegion& region) const { return NodesHit(settings, 0, region); }
    bool HitsPoint(int x, int y) const { return !Hit({HITTYPE_POINT, 0, 0, {{x, y}}}).empty(); }

    headless::ViewportSettings settings;
};

bool AreAll(const std::vector<DrawVertex>& vertices, const Colour& colour) {
    return !vertices.empty() && std::ranges::all_of(vertices, [&](const DrawVertex& vertex) {
        return vertex.colour == colour;
    });
}

TEST_F(ViewportTest, ObjectsShowInTheirNodesColourWithWhiteEdgesIfSelectedAndAreHitThere) {
    constexpr Colour red{1, 0, 0};
    constexpr Colour white{1, 1, 1};
    Object* const surfaces[] = {headless::NewSphere(10, 16), headless::NewGround(10, 2),
                                headless::NewBend(headless::NewSphere(10, 16), 45)};
    Object* const lines = headless::NewSplines({{{Corner({}), Corner({9, 9, 9})}}});
    for (Object* const object : {surfaces[0], surfaces[1], surfaces[2], lines}) {
        const bool hasFaces = object != lines;
        INode* const node = host.CreateObjectNode(object);
        SCOPED_TRACE(node->GetName());
        node->SetWireColor(0x0000FF);
        settings.isWireframe = false;
        EXPECT_TRUE(AreAll(Drawn(hasFaces), red) && Drawn(!hasFaces).empty());
        EXPECT_EQ(Hit(kWhollyInView), Handles{node->GetHandle()});
        EXPECT_TRUE(Hit({HITTYPE_RECT, 1, 0, {{0, 0}, {settings.width, 0}}}).empty());

        session.Select({node->GetName()});
        EXPECT_TRUE(AreAll(Drawn(false), white) && AreAll(Drawn(true), red) == hasFaces);
        settings.isWireframe = true;
        EXPECT_TRUE(AreAll(Drawn(false), white) && Drawn(true).empty());
        session.NewScene();
    }
}

TEST_F(ViewportTest, ACameraShowsWhatItSeesAndAHorizonAtItsOwnHeight) {
    CameraObject* camera = host.CreateCameraObject(0);
    INode* node = host.CreateObjectNode(camera);
    camera->SetFOV(0, std::numbers::pi_v<float> / 2);
    camera->SetTDist(0, 100);
    // It looks along y from 50 high, up by a tenth, and leans over.
    Matrix3 world({0.8F, 0, 0.6F}, {-0.6F, -0.08F, 0.8F}, {0.048F, -1, -0.1F}, {5, 0, 50});
    node->SetNodeTM(0, world);
    const auto width = [&](int type) {
        Box3 box;
        camera->SetFOVType(type);
        camera->GetLocalBoundBox(0, node, nullptr, box);
        return box.pmax.x - box.pmin.x;
    };
    EXPECT_LT(width(0), 100) << "a camera without a cone shows a short one";
    camera->SetConeState(1);
    for (const auto& [type, times] : {std::pair{0, 1.0}, {1, 16.0 / 9}, {2, 16 / std::sqrt(337)}})
        EXPECT_NEAR(width(type), 200 * times, 1e-3);

    camera->SetHorzLineState(1);
    const std::vector<DrawVertex> lines = Drawn(false);
    ASSERT_EQ(lines.size(), 2 * 9U);
    EXPECT_NEAR(lines[16].place.z, 50, 1e-3);
    EXPECT_NEAR(lines[17].place.z, 50, 1e-3);
    EXPECT_GT(Length(lines[17].place - lines[16].place), 100);
    EXPECT_EQ(Hit(kPartlyInView), Handles{node->GetHandle()});
    camera->SetTDist(0, std::nanf(""));
    EXPECT_TRUE(Drawn(false).empty() && Hit(kPartlyInView).empty());
}

TEST_F(ViewportTest, AMeshIsHitWhereItShows) {
    LookDown();
    AddMesh({{0, 0, 0}, {50, 0, 0}, {0, 50, 0}});  // (200, 200) to (300, 100)
    const std::pair<HitRegion, bool> rows[] = {
        {{HITTYPE_POINT, 0, 0, {{210, 190}}}, true},
        {{HITTYPE_POINT, 0, 0, {{196, 150}}}, true},
        {{HITTYPE_POINT, 0, 0, {{195, 150}}}, false},
        {{HITTYPE_POINT, 0, 0, {{310, 200}}}, false},
        {{HITTYPE_RECT, 1, 0, {{220, 170}, {225, 175}}}, true},
        {{HITTYPE_RECT, 0, 0, {{220, 170}, {225, 175}}}, false},
        {{HITTYPE_RECT, 1, 0, {{280, 110}, {290, 120}}}, false},
        {{HITTYPE_RECT, 0, 0, {{301, 201}, {199, 99}}}, true},
        {{HITTYPE_RECT, 0, 0, {{299, 201}, {199, 99}}}, false},
        {{77, 1, 100, {{210, 190}, {220, 180}}}, false}};
    for (const auto& [region, hits] : rows)
        EXPECT_EQ(!Hit(region).empty(), hits) << region.corners[0].x << ' ' << region.crossing;
    settings.isWireframe = true;
    EXPECT_TRUE(HitsPoint(250, 200) && !HitsPoint(220, 180));
    settings.camera = "nobody";
    EXPECT_FALSE(HitsPoint(250, 200));
}

TEST_F(ViewportTest, WhatReachesBehindTheViewerIsNotHitThere) {
    LookDown();
    AddMesh({{0, 0, 0}, {50, 0, 0}, {20, 60, 400}});
    AddMesh({{0, -50, 300}, {50, -50, 300}, {0, -90, 300}});
    EXPECT_TRUE(Hit(kPartlyInView).size() == 1 && Hit(kWhollyInView).empty());
    EXPECT_TRUE(HitsPoint(240, 190) && !HitsPoint(240, 215));
}

TEST_F(ViewportTest, FacesThatAreNowhereAreLeftOutAndSharedEdgesDrawnOnce) {
    LookDown();
    INode* const node =
        AddMesh({{0, 0, 0}, {50, 0, 0}, {0, 50, 0}, {50, 50, 0}, {std::nanf(""), 0, 0}},
                {{0, 1, 2}, {1, 3, 2}, {0, 1, 4}, {0, 1, 77}});
    EXPECT_EQ(Drawn(true).size(), 2 * 3U);
    settings.isWireframe = true;
    EXPECT_EQ(Drawn(false).size(), 2 * 5U);
    Place(node, {std::numeric_limits<float>::infinity(), 0, 0});
    EXPECT_TRUE(Drawn(false).empty() && !HitsPoint(210, 190));
}

TEST_F(ViewportTest, FacesAreSmoothWithinAGroupAndKeepTheirOutsideInAMirror) {
    LookDown();
    // The second looks along -y.
    INode* const node =
        AddMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}}, {{0, 1, 2}, {0, 3, 1}});
    const Point3 up(0, 0, 1);
    const auto normal = [&](std::size_t vertex) { return Drawn(true).at(vertex).normal; };
    const auto setGroups = [&](std::uint32_t first, std::uint32_t second) {
        MeshOf(node).faces[0].setSmGroup(first);
        MeshOf(node).faces[1].setSmGroup(second);
    };
    EXPECT_EQ(normal(0), up);
    EXPECT_EQ(normal(3), Point3(0, -1, 0));
    setGroups(0b100, 0b110);
    const float half = std::sqrt(0.5F);
    EXPECT_LT(Length(normal(0) - Point3(0, -half, half)), 1e-6F);
    EXPECT_EQ(normal(2), up) << "a corner of one face alone";
    setGroups(0b100, 0b010);
    EXPECT_EQ(normal(0), up);

    Matrix3 mirror;
    mirror.Scale({-1, 1, 1});
    node->SetNodeTM(0, mirror);
    EXPECT_EQ(normal(0), up);
}

}  // namespace
