#include "objects/mesh_exchange.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TVL::CMesh Triangle() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0.1}};
    mesh.faces = {2, 0, 1};
    return mesh;
}

std::vector<std::uint32_t> Indices(const Face& face) {
    return {face.v, face.v + 3};
}
std::vector<std::uint32_t> Indices(const TVFace& face) {
    return {face.t, face.t + 3};
}
using Corners = std::vector<std::uint32_t>;

TEST(MeshExchange, WritesAMeshInSinglePrecisionWithTwoVisibleEdges) {
    TVL::CMesh mesh = Triangle();
    mesh.textureVertices = {{0.25, 0.5, 0}, {1, 1, 1}};
    mesh.textureFaces = {1, 0, 1};
    mesh.faces.push_back(1);  // no whole face
    Mesh host;
    WriteMesh(mesh, host);

    ASSERT_EQ(host.getNumVerts(), 3);
    EXPECT_EQ(host.verts[2], Point3(0, 1, 0.1F));
    ASSERT_EQ(host.getNumTVerts(), 2);
    EXPECT_EQ(host.tVerts[0], Point3(0.25F, 0.5F, 0));
    ASSERT_EQ(host.getNumFaces(), 1);
    EXPECT_EQ(Indices(host.faces[0]), (Corners{2, 0, 1}));
    EXPECT_TRUE(host.faces[0].getEdgeVis(0));
    EXPECT_TRUE(host.faces[0].getEdgeVis(1));
    EXPECT_FALSE(host.faces[0].getEdgeVis(2));
    EXPECT_EQ(Indices(host.tvFace.at(0)), (Corners{1, 0, 1}));
    EXPECT_TRUE(host.IsEdgeListEnabled());
}

TEST(MeshExchange, EnablesTheEdgeListOfAMeshWithoutFacesToo) {
    Mesh host;
    WriteMesh({}, host);
    EXPECT_TRUE(host.IsEdgeListEnabled());
}

TEST(MeshExchange, NeverLetsAnIndexOutsideItsTableReachTheHost) {
    for (const int stray : {-1, 3, INT_MAX, INT_MIN}) {
        TVL::CMesh mesh = Triangle();
        mesh.faces = {0, 1, 2, 1, stray, 2};
        mesh.textureVertices.assign(3, {0, 0, 0});
        mesh.textureFaces = {0, stray, 2, 2};
        Mesh host;
        WriteMesh(mesh, host);
        ASSERT_EQ(host.getNumFaces(), 2) << stray;
        EXPECT_EQ(Indices(host.faces[0]), (Corners{0, 1, 2}));
        EXPECT_EQ(Indices(host.faces[1]), (Corners{0, 0, 0}));
        EXPECT_EQ(Indices(host.tvFace.at(0)), (Corners{0, 0, 0}));
        EXPECT_EQ(Indices(host.tvFace.at(1)), (Corners{0, 0, 0}));

        mesh.vertices.clear();
        WriteMesh(mesh, host);
        EXPECT_EQ(host.getNumFaces(), 0);
        WriteDisplayMesh(mesh, host);
        EXPECT_EQ(host.getNumFaces(), 0);
    }
}

}  // namespace
