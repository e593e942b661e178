#include "headless/viewport.h"

#include "tests/headless/host_world.h"

namespace {

constexpr HitRegion kWhollyInView{HITTYPE_RECT, 0, 0, {{-9999, -9999}, {9999, 9999}}};
constexpr HitRegion kPartlyInView{HITTYPE_RECT, 1, 0, {{-9999, -9999}, {9999, 9999}}};

// A viewport in which nothing but the nodes shows, from 100 above the ground, where two pixels are
// one host unit; (200, 200) is the origin.
class ViewportTest : public HostWorld {
  protected:
    ViewportTest() {
        settings.showsGrid = false;
        settings.width = settings.height = 400;
        settings.camera = "eye";
        CameraObject* const camera = host.CreateCameraObject(0);
        INode* const eye = host.CreateObjectNode(camera);
        eye->SetName("eye");
        camera->SetFOV(0, std::numbers::pi_v<float> / 2);
        Place(eye, {0, 0, 100});
    }

    // A node that shows these faces with all of their edges.
    INode* AddMesh(const std::vector<Point3>& places,
                   const std::vector<std::array<int, 3>>& faces = {{0, 1, 2}}) {
        INode* const node = Add("mesh");
        Mesh& mesh = static_cast<TriObject*>(node->GetObjectRef())->GetMesh();
        mesh.verts = places;
        for (const auto& [a, b, c] : faces) {
            mesh.faces.emplace_back().setVerts(a, b, c);
            mesh.faces.back().setEdgeVisFlags(1, 1, 1);
        }
        return node;
    }

    // How many corners of lines and of triangles there are, with the red, green and blue of each.
    std::string Drawn() const {
        std::map<std::string, int> counts;
        for (const headless::DrawBatch& batch : headless::DrawScene(settings, 0).list.batches)
            for (const auto& [place, normal, colour] : batch.vertices) {
                std::ostringstream kind;
                kind << (batch.isTriangles ? "triangles " : "lines ") << colour.red << colour.green
                     << colour.blue;
                ++counts[kind.str()];
            }
        std::string all;
        for (const auto& [kind, count] : counts)
            all += std::to_string(count) + " of " + kind + ", ";
        return all;
    }

    std::size_t Hits(const HitRegion& region) const { return NodesHit(settings, 0, region).size(); }
    bool HitsPoint(int x, int y) const { return Hits({HITTYPE_POINT, 0, 0, {{x, y}}}) == 1; }

    headless::ViewportSettings settings;
};

TEST_F(ViewportTest, ObjectsShowInTheirNodesColourWithWhiteEdgesIfSelected) {
    Object* const lines = headless::NewSplines({headless::StraightLines({{0, 0, 0}, {9, 9, 9}})});
    const std::tuple<Object*, const char*, const char*, const char*> rows[] = {
        {headless::NewGround(10, 1), "6 of triangles 100, ", "8 of lines 111, 6 of triangles 100, ",
         "8 of lines 111, "},
        {lines, "2 of lines 100, ", "2 of lines 111, ", "2 of lines 111, "}};
    for (const auto& [object, shaded, selected, wired] : rows) {
        INode* const node = host.CreateObjectNode(object);
        node->SetWireColor(0x0000FF);
        settings.isWireframe = false;
        EXPECT_EQ(Drawn(), shaded);
        EXPECT_EQ(NodesHit(settings, 0, kWhollyInView), std::vector{node->GetHandle()});
        session.Select({node->GetName()});
        EXPECT_EQ(Drawn(), selected);
        settings.isWireframe = true;
        EXPECT_EQ(Drawn(), wired);
        host.DeleteNode(node);
    }
}

TEST_F(ViewportTest, AMeshIsHitWhereItShowsAndNotWhereItReachesBehindTheViewer) {
    INode* const flat = AddMesh({{0, 0, 0}, {50, 0, 0}, {0, 50, 0}});  // (200, 200) to (300, 100)
    const std::pair<HitRegion, bool> rows[] = {
        {{HITTYPE_POINT, 0, 0, {{210, 190}}}, true},
        {{HITTYPE_POINT, 0, 0, {{196, 150}}}, true},
        {{HITTYPE_POINT, 0, 0, {{195, 150}}}, false},
        {{HITTYPE_POINT, 0, 0, {{310, 200}}}, false},
        {{HITTYPE_RECT, 1, 0, {{220, 170}, {225, 175}}}, true},
        {{HITTYPE_RECT, 1, 0, {{280, 110}, {290, 120}}}, false},
        {{HITTYPE_RECT, 0, 0, {{301, 201}, {199, 99}}}, true},
        {{HITTYPE_RECT, 0, 0, {{299, 201}, {199, 99}}}, false},
        {{77, 1, 100, {{210, 190}, {220, 180}}}, false}};
    for (const auto& [region, hits] : rows)
        EXPECT_EQ(Hits(region), hits) << region.corners[0].x << ' ' << region.crossing;
    settings.isWireframe = true;
    EXPECT_TRUE(HitsPoint(250, 200) && !HitsPoint(220, 180));
    host.DeleteNode(flat);
    settings.isWireframe = false;
    INode* const close = AddMesh({{1, 1, 98}, {2, 1, 98}, {1, 2, 98}});
    EXPECT_TRUE(HitsPoint(330, 70));
    host.DeleteNode(close);
    AddMesh({{0, 0, 0}, {50, 0, 0}, {20, 60, 400}});
    AddMesh({{0, -50, 300}, {50, -50, 300}, {0, -90, 300}});
    EXPECT_TRUE(Hits(kPartlyInView) == 1 && Hits(kWhollyInView) == 0);
    EXPECT_TRUE(HitsPoint(240, 190) && !HitsPoint(240, 215));
}

TEST_F(ViewportTest, FacesThatAreNowhereAreLeftOutAndSharedEdgesDrawnOnce) {
    INode* const node =
        AddMesh({{0, 0, 0}, {50, 0, 0}, {0, 50, 0}, {50, 50, 0}, {0, 0, 50}, {kNaN, 0, 0}},
                {{0, 1, 5}, {0, 1, 77}, {0, -1, 1}, {0, 1, 2}, {1, 3, 2}, {4, 1, 2}});
    EXPECT_TRUE(Drawn().starts_with("9 of triangles ")) << Drawn();
    float at = 0;
    Point3 normal;
    const Mesh& mesh = static_cast<TriObject*>(node->GetObjectRef())->GetMesh();
    EXPECT_TRUE(mesh.IntersectRay({{10, 10, -9}, {0, 0, 3}}, at, normal) != 0 && at == 3);
    EXPECT_EQ(normal, Point3(0, 0, 1)) << "of the nearest, also from below";
    settings.isWireframe = true;
    EXPECT_TRUE(Drawn().starts_with("14 of lines ")) << Drawn();
    Place(node, {std::numeric_limits<float>::infinity(), 0, 0});
    EXPECT_TRUE(Drawn().empty() && !HitsPoint(210, 190));
}

}  // namespace
