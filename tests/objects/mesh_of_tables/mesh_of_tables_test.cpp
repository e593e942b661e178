#include <gtest/gtest.h>

#include "objects/mesh_exchange.h"

// The exchange as it is built for a host whose meshes are plain tables.
namespace {

TVL::CMesh TwoFaces() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 4}};
    mesh.faces = {0, 1, 2, 0, 2, 3};
    mesh.textureVertices = {{0.5, 0, 0}, {1, 1, 0}};
    mesh.textureFaces = {0, 1, 0, 1, 0, 1};
    return mesh;
}

TEST(MeshOfTables, ComesBackAsItWasWritten) {
    const TVL::CMesh mesh = TwoFaces();
    Mesh host;
    WriteMesh(mesh, host);
    EXPECT_TRUE(host.hasEdges);
    EXPECT_EQ(host.faces[1].flags, 3U);
    const TVL::CMesh read = ReadMesh(host);
    EXPECT_EQ(read.vertices, mesh.vertices);
    EXPECT_EQ(read.faces, mesh.faces);
    EXPECT_EQ(read.textureVertices, mesh.textureVertices);
    EXPECT_EQ(read.textureFaces, mesh.textureFaces);

    // Texture faces of which some are missing, and all without texture vertices.
    host.setNumTVFaces(1);
    host.tvFace[0].setTVerts(1, 1, 1);
    EXPECT_EQ(ReadMesh(host).textureFaces, (std::vector<int>{1, 1, 1, 0, 0, 0}));
    host.setNumTVerts(0);
    EXPECT_EQ(ReadMesh(host).textureFaces, std::vector<int>(6, 0));
}

TEST(MeshOfTables, IsWrittenNoFurtherThanItsTablesGo) {
    TVL::CMesh large = TwoFaces();
    large.vertices.resize(9);
    large.textureVertices.resize(9);
    for (int face = 0; face < 9; ++face)
        large.faces.insert(large.faces.end(), {face, 0, 1});
    Mesh host;
    host.most = 6;
    for (const auto& write : {WriteMesh, WriteDisplayMesh}) {
        write(large, host);
        write(TwoFaces(), host);
        host.most = 1;
        write(large, host);
        write({}, host);
        host.most = 6;
    }
    EXPECT_EQ(host.numVerts, 0);
}

}  // namespace
