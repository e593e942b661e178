#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <tuple>

#include "objects/mesh_exchange.h"

// The exchange as it is built for a host whose meshes are plain tables.
namespace {

TVL::CMesh TwoFaces() {
    TVL::CMesh mesh;
    mesh.vertices = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {0, 0, 4.5}};
    mesh.faces = {0, 1, 2, 0, 2, 3};
    mesh.textureVertices = {{0.5, 0, 0}, {1, 1, 0}};
    mesh.textureFaces = {0, 1, 0, 1, 0, 1};
    return mesh;
}

auto Tables(const TVL::CMesh& mesh) {
    return std::tie(mesh.vertices, mesh.textureVertices, mesh.faces, mesh.textureFaces);
}

// The corners of each face, those of its texture, and the bits of the edges that show.
std::string FacesOf(const Mesh& mesh) {
    std::ostringstream text;
    for (std::size_t face = 0; face < static_cast<std::size_t>(mesh.numFaces); ++face) {
        for (const std::uint32_t corner : mesh.faces[face].v)
            text << corner;
        text << ' ';
        for (const std::uint32_t corner : mesh.tvFace[face].t)
            text << corner;
        text << ' ' << mesh.faces[face].flags << "; ";
    }
    return text.str();
}

TEST(MeshOfTables, ComesBackAsItWasWrittenAndNamesNothingOutsideOfItsTables) {
    TVL::CMesh mesh = TwoFaces();
    mesh.faces.push_back(1);  // no whole face
    Mesh host;
    WriteMesh(mesh, host);
    EXPECT_EQ(FacesOf(host), "012 010 3; 023 101 3; ");
    EXPECT_TRUE(Tables(ReadMesh(host)) == Tables(TwoFaces()));

    // Texture faces of which some are missing, and all without texture vertices.
    host.numTVFaces = 1;
    EXPECT_EQ(ReadMesh(host).textureFaces, (std::vector<int>{0, 1, 0, 0, 0, 0}));
    host.setNumTVerts(0);
    EXPECT_EQ(ReadMesh(host).textureFaces, std::vector<int>(6, 0));

    for (const int stray : {-1, 4, INT_MAX, INT_MIN}) {
        mesh = TwoFaces();
        mesh.faces[4] = mesh.textureFaces[1] = stray;
        mesh.textureFaces.pop_back();
        WriteMesh(mesh, host);
        EXPECT_EQ(FacesOf(host), "012 000 3; 000 000 3; ") << stray;
        mesh.vertices.clear();
        for (const auto& write : {WriteMesh, WriteDisplayMesh}) {
            host.setNumFaces(1);
            host.hasEdges = false;
            write(mesh, host);
            EXPECT_EQ(host.numFaces, 0);
            EXPECT_EQ(host.hasEdges, write == WriteMesh);

            // A host that cannot hold more keeps its tables as they are.
            Mesh small;
            small.most = 1;
            write(TwoFaces(), small);
            EXPECT_EQ(small.numFaces, 0);
        }
    }
}

}  // namespace
