#include "objects/custom_helper_object.h"

#include <gtest/gtest.h>

#include <limits>

#include "headless/memory_chunks.h"

namespace {

using headless::LoadBytes;
using headless::SavedBytes;
using Bytes = std::vector<std::byte>;

void FillWithTwoTriangles(CustomHelperObject& helper) {
    helper.mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, -3.5}};
    helper.mesh.textureVertices = {{1, 1, 1}};
    helper.mesh.faces = {0, 1, 2, 3, 1, 0};
    helper.colour = {0.25F, 0.5F, 1};
    helper.wireframe = 0;
    helper.backfaceCull = 1;
    helper.reserved = {7, 9};
}

// A chunk 1 or 2 that holds this count and then as many zero bytes.
Bytes CountChunk(std::uint16_t id, std::int32_t count, std::size_t zeroBytes) {
    return headless::SavedBytes([&](ISave* save) {
        save->BeginChunk(id);
        save->Write(&count, sizeof count, nullptr);
        const Bytes zeros(zeroBytes);
        save->Write(zeros.data(), static_cast<std::uint32_t>(zeroBytes), nullptr);
        return save->EndChunk();
    });
}

// The display mesh can be drawn: no face names a vertex that is not there.
void ExpectDrawable(CustomHelperObject& helper) {
    Box3 box;
    helper.GetLocalBoundBox(0, nullptr, nullptr, box);
    for (const Face& face : helper.displayMesh.faces)
        for (const std::uint32_t vertex : face.v)
            EXPECT_LT(vertex, helper.displayMesh.verts.size());
    EXPECT_EQ(helper.mesh.faces.size() % 3, 0U);
    EXPECT_EQ(helper.mesh.textureFaces.size(), helper.mesh.faces.size());
}

TEST(CustomHelperObject, IsAnEmptyRedWireframeWhenNew) {
    CustomHelperObject helper;
    EXPECT_EQ(helper.colour, (std::array<float, 3>{1, 0, 0}));
    EXPECT_EQ(helper.wireframe, 1);
    EXPECT_EQ(helper.backfaceCull, 0);
    EXPECT_EQ(helper.reserved, (std::array<std::uint8_t, 2>{0, 0}));
    EXPECT_EQ(helper.SuperClassID(), 0x50U);
    EXPECT_EQ(helper.ClassID(), (Class_ID{0x22E322A5, 0x3010606F}));
    HostString name;
    helper.InitNodeName(name);
    EXPECT_EQ(name, "Tarvo_Helper");
    EXPECT_EQ(helper.Eval(0).obj, &helper);
    Box3 box(Point3(0, 0, 0), Point3(1, 1, 1));
    helper.GetWorldBoundBox(0, nullptr, nullptr, box);
    EXPECT_TRUE(box.IsEmpty());
}

TEST(CustomHelperObject, ComesBackFromStorageButForTextureCoordinates) {
    CustomHelperObject helper;
    FillWithTwoTriangles(helper);
    helper.mesh.vertices.resize(10000, {1, 2, 3});
    Bytes bytes = CountChunk(77, 5, 100);  // passed over
    const Bytes known = SavedBytes(helper);
    bytes.insert(bytes.end(), known.begin(), known.end());
    CustomHelperObject loaded;
    EXPECT_EQ(LoadBytes(bytes, loaded), IO_OK);
    EXPECT_EQ(loaded.mesh.vertices, helper.mesh.vertices);
    EXPECT_EQ(loaded.mesh.faces, helper.mesh.faces);
    EXPECT_TRUE(loaded.mesh.textureVertices.empty());
    EXPECT_EQ(loaded.mesh.textureFaces, std::vector<int>(6, 0));
    EXPECT_EQ(loaded.colour, helper.colour);
    EXPECT_EQ(loaded.wireframe, 0);
    EXPECT_EQ(loaded.backfaceCull, 1);
    EXPECT_EQ(loaded.reserved, helper.reserved);
    EXPECT_NE(loaded.meshDirty, 0);
    EXPECT_EQ(SavedBytes(loaded), known);
}

TEST(CustomHelperObject, WritesThreeChunksOfAFixedLayout) {
    CustomHelperObject helper;
    helper.mesh.vertices = {{1, 2, 3}};
    helper.mesh.faces = {0, 0, 0, 0};
    helper.reserved = {7, 9};
    const Bytes expected = headless::SavedBytes([](ISave* save) {
        const auto write = [save](auto... values) {
            (save->Write(&values, sizeof values, nullptr), ...);
        };
        save->BeginChunk(1);
        write(std::int32_t{1}, 1.0, 2.0, 3.0);
        save->EndChunk();
        save->BeginChunk(2);
        write(std::int32_t{1}, std::int32_t{0}, std::int32_t{0}, std::int32_t{0});
        save->EndChunk();
        save->BeginChunk(3);
        write(1.0F, 0.0F, 0.0F);
        write('\1', '\0', '\7', '\11');
        return save->EndChunk();
    });
    EXPECT_EQ(SavedBytes(helper), expected);

    CustomHelperObject empty;
    EXPECT_EQ(SavedBytes(empty).size(), 3 * 10 + 4 + 4 + 16U);
}

TEST(CustomHelperObject, BelievesACountOnlyAsFarAsBytesFollow) {
    constexpr std::int32_t kMany = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t count : {-1, -kMany, kMany}) {
        const std::size_t whole = count < 0 ? 0 : 2;
        CustomHelperObject helper;
        EXPECT_EQ(LoadBytes(CountChunk(1, count, 2 * 24 + 23), helper), IO_OK);
        EXPECT_EQ(helper.mesh.vertices.size(), whole) << count;
        EXPECT_EQ(LoadBytes(CountChunk(2, count, 2 * 12 + 11), helper), IO_OK);
        EXPECT_EQ(helper.mesh.faces.size(), whole * 3) << count;
        ExpectDrawable(helper);
    }
}

TEST(CustomHelperObject, RebuildsItsDisplayMeshForEveryBoundingBox) {
    CustomHelperObject helper;
    FillWithTwoTriangles(helper);
    Box3 box;
    helper.GetLocalBoundBox(0, nullptr, nullptr, box);
    EXPECT_EQ(box.pmin, Point3(0, 0, -3.5F));
    EXPECT_EQ(box.pmax, Point3(1, 2, 0));
    EXPECT_EQ(helper.meshDirty, 0);
    helper.mesh.vertices.push_back({5, 0, 0});
    helper.GetLocalBoundBox(0, nullptr, nullptr, box);
    EXPECT_EQ(box.pmax, Point3(5, 2, 0));
    helper.FreeCaches();
    EXPECT_EQ(helper.displayMesh.getNumVerts(), 0);
    EXPECT_NE(helper.meshDirty, 0);
    helper.GetLocalBoundBox(0, nullptr, nullptr, box);
    EXPECT_EQ(helper.displayMesh.getNumFaces(), 2);
}

}  // namespace
