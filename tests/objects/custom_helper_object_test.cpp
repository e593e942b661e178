#include "objects/custom_helper_object.h"

#include "headless/memory_chunks.h"
#include "headless/viewport.h"
#include "host/interface.h"
#include "tests/support/matrices.h"
#include "tests/support/world.h"

namespace {

using headless::LoadBytes;
using headless::SavedBytes;
using Bytes = std::vector<std::byte>;

template <class... Values>
void WriteAll(ISave* save, const Values&... values) {
    (save->Write(&values, sizeof values, nullptr), ...);
}

// A helper in a scene file as somebody has damaged it: one chunk of zeros, which says how many
// items it holds.
class DamagedHelper final : public HelperObject {
  public:
    DamagedHelper(std::uint16_t id, std::int32_t count, std::size_t bytes)
        : id_(id), count_(count), zeros_(bytes) {}
    Class_ID ClassID() override { return kCustomHelperObjectClassId; }
    void GetClassName(HostString& name) override { name = kCustomHelperObjectName; }
    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override {
        save->BeginChunk(id_);
        WriteAll(save, count_);
        save->Write(zeros_.data(), static_cast<std::uint32_t>(zeros_.size()), nullptr);
        return save->EndChunk();
    }

  private:
    std::uint16_t id_;
    std::int32_t count_;
    Bytes zeros_;
};

TEST(CustomHelperObject, IsStoredInThreeChunksAndComesBackButForItsTexture) {
    CustomHelperObject helper;
    EXPECT_EQ(SavedBytes(helper).size(), 3 * 10 + 4 + 4 + 16U);  // counts alone, and the look
    helper.mesh.vertices.assign(10000, {1, 2, -3.5});
    helper.mesh.textureVertices = {{1, 1, 1}};
    helper.mesh.faces = {0, 1, 2, 3, 1, 0, 7};  // the last is no whole face
    helper.colour = {0.25F, 0.5F, 1};
    helper.backfaceCull = 1;
    helper.reserved = {7, 9};
    const Bytes known = SavedBytes([](ISave* save) {
        save->BeginChunk(1);
        WriteAll(save, std::int32_t{10000});
        for (int vertex = 0; vertex < 10000; ++vertex)
            WriteAll(save, 1.0, 2.0, -3.5);
        save->EndChunk();
        save->BeginChunk(2);
        WriteAll(save, std::int32_t{2}, std::array<std::int32_t, 6>{0, 1, 2, 3, 1, 0});
        save->EndChunk();
        save->BeginChunk(3);
        WriteAll(save, std::array{0.25F, 0.5F, 1.0F}, std::array<char, 4>{1, 1, 7, 9});
        return save->EndChunk();
    });
    EXPECT_TRUE(SavedBytes(helper) == known);

    DamagedHelper unknown(77, 5, 100);  // a chunk that is passed over
    Bytes bytes = SavedBytes(unknown);
    bytes.insert(bytes.end(), known.begin(), known.end());
    CustomHelperObject loaded;
    EXPECT_EQ(LoadBytes(bytes, loaded), IO_OK);
    EXPECT_TRUE(SavedBytes(loaded) == known);
    EXPECT_TRUE(loaded.mesh.textureVertices.empty());
    EXPECT_EQ(loaded.mesh.textureFaces, std::vector<int>(6, 0));
}

// A count is believed only as far as bytes follow, and the file keeps what cannot be read.
TEST(CustomHelperObject, LosesNothingOfADamagedChunk) {
    World world;
    const std::string stored = (world.Folder() / "stored").string();
    const std::string again = (world.Folder() / "again").string();
    const struct {
        std::uint16_t chunk;
        std::int32_t count;
        std::size_t bytes;
        bool isWhole;
        std::size_t vertices, faces;
    } cases[] = {{1, 2, 48, true, 2, 0},        {1, 1, 48, false, 1, 0},
                 {1, INT_MAX, 71, false, 2, 0}, {1, -1, 24, false, 0, 0},
                 {2, INT_MAX, 35, false, 0, 2}, {2, -1, 36, false, 0, 0},
                 {3, 0, 11, false, 0, 0},       {3, 0, 13, false, 0, 0}};
    for (const auto& [chunk, count, bytes, isWhole, vertices, faces] : cases) {
        SCOPED_TRACE(testing::Message() << chunk << ": " << count << ", " << bytes);
        auto* const damaged = new DamagedHelper(chunk, count, bytes);
        CustomHelperObject loaded;
        LoadBytes(SavedBytes(*damaged), loaded);
        EXPECT_EQ(loaded.mesh.vertices.size(), vertices);
        EXPECT_EQ(loaded.mesh.faces.size(), faces * 3);

        world.Session().NewScene();
        GetCOREInterface()->CreateObjectNode(damaged);
        ASSERT_EQ(world.Session().SaveScene(stored).error, "");
        const headless::FileOutcome opened = world.Session().OpenScene(stored);
        EXPECT_EQ(opened.error, "");
        EXPECT_EQ(opened.complaints.size(), isWhole ? 0U : 1U);
        ASSERT_EQ(world.Session().SaveScene(again).error, "");
        EXPECT_TRUE(isWhole || ReadFile(again) == ReadFile(stored));
    }
}

// A window of somebody else's, which notes what it is told, and lends itself to a view.
class NotedWindow final : public GraphicsWindow, public ViewExp {
  public:
    std::uint32_t getRndLimits() override { return limits; }
    void setRndLimits(std::uint32_t next) override { told << std::hex << (limits = next) << ' '; }
    Material* getMaterial() override { return nullptr; }
    void setTransform(const Matrix3& place) override { told << "at " << place.GetTrans().z << ' '; }
    void setColor(int type, float red, float green, float blue) override {
        told << (type == LINE_COLOR ? "line " : "fill ") << red << green << blue << ' ';
    }
    GraphicsWindow* getGW() override { return this; }

    std::uint32_t limits = GW_ILLUM | GW_SPECULAR | 0x40;
    std::ostringstream told;
};

TEST(CustomHelperObject, BuildsItsDisplayMeshForEveryBoxAndTellsTheWindowHowToDrawIt) {
    World world;
    auto* const helper = new CustomHelperObject;
    INode* const node = GetCOREInterface()->CreateObjectNode(helper);
    EXPECT_STREQ(node->GetName(), "Tarvo_Helper01");
    node->SetNodeTM(0, MovedBy(Point3(0, 0, 7)));
    helper->mesh.vertices = {{0, 0, 0}, {40, 0, 0}, {0, 0, 40}, {20, 30, 20}};
    helper->mesh.faces = {0, 1, 2, 0, 2, 3};  // the first looks to the front, the other away
    Box3 box;
    helper->GetLocalBoundBox(0, nullptr, nullptr, box);
    EXPECT_EQ(box.pmax, Point3(40, 30, 40));
    helper->mesh.vertices.push_back({50, 0, 0});
    helper->GetWorldBoundBox(0, node, nullptr, box);
    EXPECT_EQ(box.pmax, Point3(50, 30, 47));
    helper->FreeCaches();
    EXPECT_EQ(helper->displayMesh.getNumVerts(), 0);
    const HitRegion all{HITTYPE_RECT, 0, 0, {{0, 0}, {960, 540}}};
    EXPECT_EQ(headless::NodesHit({}, 0, all), std::vector{node->GetHandle()});

    const auto display = [&] {
        NotedWindow window;
        EXPECT_EQ(helper->Display(0, node, &window, 0), 0);
        EXPECT_EQ(helper->HitTest(0, node, HITTYPE_POINT, 0, 0, nullptr, &window), 0);
        return window.told.str();
    };
    EXPECT_EQ(display(), "65 line 100 fill 100 at 7 4a ");
    helper->wireframe = 0;
    helper->backfaceCull = 1;
    helper->colour = {0, 1, 0};
    EXPECT_EQ(display(), "16a line 010 fill 010 at 7 4a ");
    world.Session().Select({"Tarvo_Helper01"});
    EXPECT_EQ(display(), "16a line 111 at 7 4a ");

    // Without a node or a view nothing is done.
    EXPECT_EQ(helper->Display(0, nullptr, nullptr, 0), 0);
    EXPECT_EQ(helper->HitTest(0, node, HITTYPE_POINT, 0, 0, nullptr, nullptr), 0);
}

}  // namespace
