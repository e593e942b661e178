#include "objects/custom_helper_object.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/memory_storage.h"

namespace {

void FillWithTwoTriangles(CustomHelperObject& helper) {
    helper.mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, -3.5}};
    helper.mesh.textureVertices = {{1, 1, 1}};
    helper.mesh.faces = {0, 1, 2, 3, 1, 0};
    helper.colour = {0.25F, 0.5F, 1};
    helper.wireframe = 0;
    helper.backfaceCull = 1;
    helper.reserved = {7, 9};
}

std::vector<std::byte> Saved(CustomHelperObject& helper) {
    MemorySave save;
    EXPECT_EQ(helper.Save(&save), IO_OK);
    return save.bytes;
}

void LoadFrom(CustomHelperObject& helper, std::span<const std::byte> bytes) {
    MemoryLoad load(bytes);
    EXPECT_EQ(helper.Load(&load), IO_OK);
}

template <class T>
void Append(std::vector<std::byte>& bytes, T value) {
    const auto* const first = reinterpret_cast<const std::byte*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof value);
}

// A chunk 1 or 2 that holds this count and then as many zero bytes.
std::vector<std::byte> CountChunk(std::uint16_t id, std::int32_t count, std::size_t zeroBytes) {
    std::vector<std::byte> bytes;
    Append(bytes, id);
    Append(bytes, static_cast<std::uint32_t>(sizeof count + zeroBytes));
    Append(bytes, count);
    bytes.resize(bytes.size() + zeroBytes);
    return bytes;
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
    std::vector<std::byte> bytes = CountChunk(77, 5, 100);  // passed over
    const std::vector<std::byte> known = Saved(helper);
    bytes.insert(bytes.end(), known.begin(), known.end());
    CustomHelperObject loaded;
    LoadFrom(loaded, bytes);
    EXPECT_EQ(loaded.mesh.vertices, helper.mesh.vertices);
    EXPECT_EQ(loaded.mesh.faces, helper.mesh.faces);
    EXPECT_TRUE(loaded.mesh.textureVertices.empty());
    EXPECT_EQ(loaded.mesh.textureFaces, std::vector<int>(6, 0));
    EXPECT_EQ(loaded.colour, helper.colour);
    EXPECT_EQ(loaded.wireframe, 0);
    EXPECT_EQ(loaded.backfaceCull, 1);
    EXPECT_EQ(loaded.reserved, helper.reserved);
    EXPECT_NE(loaded.meshDirty, 0);
    EXPECT_EQ(Saved(loaded), known);
}

TEST(CustomHelperObject, WritesThreeChunksOfAFixedLayout) {
    CustomHelperObject helper;
    helper.mesh.vertices = {{1, 2, 3}};
    helper.mesh.faces = {0, 0, 0, 0};
    helper.reserved = {7, 9};
    std::vector<std::byte> expected;
    Append(expected, std::uint16_t{1});
    Append(expected, std::uint32_t{28});
    Append(expected, std::int32_t{1});
    for (const double coordinate : {1.0, 2.0, 3.0})
        Append(expected, coordinate);
    Append(expected, std::uint16_t{2});
    Append(expected, std::uint32_t{16});
    for (const std::int32_t number : {1, 0, 0, 0})
        Append(expected, number);
    Append(expected, std::uint16_t{3});
    Append(expected, std::uint32_t{16});
    for (const float channel : {1.0F, 0.0F, 0.0F})
        Append(expected, channel);
    for (const int byte : {1, 0, 7, 9})
        Append(expected, static_cast<std::uint8_t>(byte));
    EXPECT_EQ(Saved(helper), expected);

    CustomHelperObject empty;
    EXPECT_EQ(Saved(empty).size(), 3 * 6 + 4 + 4 + 16U);
}

TEST(CustomHelperObject, BelievesACountOnlyAsFarAsBytesFollow) {
    constexpr std::int32_t kMany = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t count : {-1, -kMany, kMany}) {
        const std::size_t whole = count < 0 ? 0 : 2;
        CustomHelperObject helper;
        LoadFrom(helper, CountChunk(1, count, 2 * 24 + 23));
        EXPECT_EQ(helper.mesh.vertices.size(), whole) << count;
        LoadFrom(helper, CountChunk(2, count, 2 * 12 + 11));
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
