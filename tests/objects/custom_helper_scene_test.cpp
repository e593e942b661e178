#include <gtest/gtest.h>

#include "headless/scene_view.h"
#include "headless/viewport.h"
#include "host/interface.h"
#include "host/node.h"
#include "objects/custom_helper_object.h"
#include "tests/support/matrices.h"
#include "tests/support/world.h"

// The helper object in a scene: drawn, hit, stored.
namespace {

using headless::Colour;
using headless::DrawBatch;

CustomHelperObject* NewHelper() {
    void* const made =
        GetCOREInterface()->CreateInstance(HELPER_CLASS_ID, kCustomHelperObjectClassId);
    auto* const helper = static_cast<CustomHelperObject*>(static_cast<Object*>(made));
    helper->mesh.vertices = {{0, 0, 0}, {40, 0, 0}, {0, 0, 40}, {20, 30, 20}};
    helper->mesh.faces = {0, 1, 2, 0, 2, 3};  // the first looks to the front, the other away
    return helper;
}

INode* AddNode(Object* object, const char* name) {
    INode* const node = GetCOREInterface()->CreateObjectNode(object);
    node->SetName(name);
    return node;
}

class HelperInScene : public testing::Test {
  protected:
    HelperInScene() { settings.showsGrid = false; }

    std::vector<DrawBatch> Drawn() const { return headless::DrawScene(settings, 0).list.batches; }

    std::string File(const char* name) const { return (world.Folder() / name).string(); }

    World world;
    headless::ViewportSettings settings;
};

TEST_F(HelperInScene, DrawsARedWireframeThatIsWhiteWhenSelected) {
    AddNode(NewHelper(), "Guide");
    for (const Colour colour : {Colour{1, 0, 0}, Colour{1, 1, 1}}) {
        const auto batches = Drawn();
        ASSERT_EQ(batches.size(), 1U);
        EXPECT_FALSE(batches[0].isTriangles);
        EXPECT_TRUE(batches[0].usesDepth);
        EXPECT_EQ(batches[0].vertices.size(), 2 * 5U);
        for (const auto& vertex : batches[0].vertices)
            EXPECT_EQ(vertex.colour, colour);
        world.Session().Select({"Guide"});
    }
}

TEST_F(HelperInScene, IsShownByACopyOfItsNodeToo) {
    INode* node = AddNode(NewHelper(), "Guide");
    INodeTab nodes;
    nodes.Append(1, &node);
    INodeTab copies;
    GetCOREInterface()->CloneNodes(nodes, {}, false, NODE_COPY, nullptr, &copies);
    ASSERT_EQ(copies.Count(), 1);
    EXPECT_EQ(copies[0]->GetObjectRef(), node->GetObjectRef());
}

TEST_F(HelperInScene, DrawsFacesInItsColourAndLeavesOutItsBackIfItIsSaid) {
    CustomHelperObject* const helper = NewHelper();
    INode* const node = AddNode(helper, "Guide");
    helper->colour = {0.25F, 2, 0.5F};
    helper->backfaceCull = 1;
    EXPECT_EQ(Drawn().at(0).vertices.size(), 2 * 3U) << "edges of the face that looks here";
    helper->wireframe = 0;
    node->SetNodeTM(0, MovedBy(Point3(0, 0, 7)));
    const auto batches = Drawn();
    ASSERT_EQ(batches.size(), 1U);
    EXPECT_TRUE(batches[0].isTriangles && batches[0].isLit && batches[0].cullsBackfaces);
    ASSERT_EQ(batches[0].vertices.size(), 2 * 3U);
    EXPECT_EQ(batches[0].vertices[2].place, Point3(0, 0, 47));
    EXPECT_EQ(batches[0].vertices[2].colour, (Colour{0.25F, 1, 0.5F}));
    EXPECT_EQ(batches[0].vertices[2].normal, Point3(0, -1, 0));
}

TEST_F(HelperInScene, IsHitByTheMouseWhereItShows) {
    INode* const node = AddNode(NewHelper(), "Guide");
    const auto hit = [&](const HitRegion& region) {
        return headless::NodesHit(settings, 0, region);
    };
    const IPoint2 end{settings.width, settings.height};
    EXPECT_EQ(hit({HITTYPE_RECT, 0, 0, {{0, 0}, end}}), std::vector{node->GetHandle()});
    EXPECT_TRUE(hit({HITTYPE_POINT, 0, 0, {{0, 0}, {}}}).empty());
    node->Hide(true);
    EXPECT_TRUE(hit({HITTYPE_RECT, 0, 0, {{0, 0}, end}}).empty());
}

// Somebody else's window, which keeps what it is told.
class NotedWindow final : public GraphicsWindow {
  public:
    std::uint32_t getRndLimits() override { return limits; }
    void setRndLimits(std::uint32_t next) override {
        limits = next;
        seen.push_back(next);
    }
    Material* getMaterial() override { return nullptr; }
    void setTransform(const Matrix3&) override {}
    void setColor(int, float, float, float) override {}

    std::uint32_t limits = GW_ILLUM | GW_SPECULAR | 0x40;
    std::vector<std::uint32_t> seen;
};

class NotedView final : public ViewExp {
  public:
    GraphicsWindow* getGW() override { return window; }
    GraphicsWindow* window = nullptr;
};

TEST_F(HelperInScene, PutsTheWindowsLimitsBackAndDoesNothingWhereSomethingIsMissing) {
    CustomHelperObject* const helper = NewHelper();
    INode* const node = AddNode(helper, "Guide");
    NotedWindow window;
    NotedView view;
    IPoint2 point;
    view.window = &window;
    EXPECT_EQ(helper->Display(0, node, &view, 0), 0);
    EXPECT_EQ(window.seen, (std::vector<std::uint32_t>{0x65, 0x4A}));
    helper->wireframe = 0;
    helper->backfaceCull = 1;
    EXPECT_EQ(helper->Display(0, node, &view, 0), 0);
    EXPECT_EQ(window.seen[2], 0x16AU);
    EXPECT_EQ(window.limits, 0x4AU);

    EXPECT_EQ(helper->HitTest(0, node, HITTYPE_POINT, 0, 0, nullptr, &view), 0);
    for (INode* shown : {node, static_cast<INode*>(nullptr)}) {
        view.window = shown ? nullptr : &window;
        for (ViewExp* seen : {static_cast<ViewExp*>(&view), static_cast<ViewExp*>(nullptr)}) {
            EXPECT_EQ(helper->Display(0, shown, seen, 0), 0);
            EXPECT_EQ(helper->HitTest(0, shown, HITTYPE_POINT, 0, 0, &point, seen), 0);
        }
    }
    EXPECT_EQ(window.seen.size(), 4U);
}

// A helper in a scene file as somebody has damaged it: a chunk of 24 bytes, which says how many
// vertices it holds, and what stands behind it.
class StoredHelper final : public HelperObject {
  public:
    StoredHelper(std::uint16_t id, std::int32_t count, std::uint32_t bytes)
        : id_(id), count_(count), bytes_(bytes) {}
    Class_ID ClassID() override { return kCustomHelperObjectClassId; }
    void GetClassName(HostString& name) override { name = kCustomHelperObjectName; }
    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override {
        const std::vector<std::byte> contents(bytes_, std::byte{1});
        save->BeginChunk(id_);
        save->Write(&count_, sizeof count_, nullptr);
        save->Write(contents.data(), bytes_, nullptr);
        return save->EndChunk();
    }

  private:
    std::uint16_t id_;
    std::int32_t count_;
    std::uint32_t bytes_;
};

TEST_F(HelperInScene, IsKeptAsStoredWithOneLineIfItsChunksAreDamagedAndTheRestStands) {
    struct Case {
        std::uint16_t chunk;
        std::int32_t count;
        std::uint32_t bytes;
        bool isWhole;
    };
    for (const auto& [chunk, count, bytes, isWhole] :
         {Case{1, 2, 48, true}, Case{9, 2, 48, true}, Case{1, 3, 48, false}, Case{1, 1, 48, false},
          Case{2, 90000, 36, false}, Case{2, -1, 36, false}, Case{3, 0, 11, false},
          Case{3, 0, 13, false}}) {
        SCOPED_TRACE(testing::Message() << chunk << ": " << count << ", " << bytes);
        world.Session().NewScene();
        AddNode(new StoredHelper(chunk, count, bytes), "Guide\n");
        AddNode(NewHelper(), "Whole");
        ASSERT_EQ(world.Session().SaveScene(File("stored")).error, "");
        const headless::FileOutcome opened = world.Session().OpenScene(File("stored"));
        EXPECT_EQ(opened.error, "");
        ASSERT_EQ(opened.complaints.size(), isWhole ? 0 : 1);
        EXPECT_EQ(Drawn().size(), 1U);
        if (isWhole) continue;

        EXPECT_TRUE(opened.complaints[0].starts_with(File("stored") + ": at byte "));
        EXPECT_TRUE(opened.complaints[0].ends_with(
            ": Tarvo_Helper of the node \"Guide\\n\" could not read all of its bytes as they are; "
            "it is kept as it is stored"))
            << opened.complaints[0];
        ASSERT_EQ(world.Session().SaveScene(File("again")).error, "");
        EXPECT_TRUE(ReadFile(File("again")) == ReadFile(File("stored")));
    }
}

}  // namespace
