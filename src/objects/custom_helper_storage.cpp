#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "chunks/whole_value.h"
#include "host/storage.h"
#include "objects/custom_helper_object.h"

// Chunks of a helper in the scene file, always all three:
//   1  int32 vertex count, then x, y, z of each vertex as doubles
//   2  int32 face count, then three int32 vertex indices of each face
//   3  colour as three floats, wireframe, backfaceCull, two reserved bytes
// Numbers are little-endian, which is how the machines that run the host hold them.
static_assert(std::endian::native == std::endian::little);

namespace {

constexpr std::uint16_t kVerticesChunk = 1;
constexpr std::uint16_t kFacesChunk = 2;
constexpr std::uint16_t kLookChunk = 3;

using Vertex = std::array<double, 3>;
using Triangle = std::array<std::int32_t, 3>;
static_assert(sizeof(Vertex) == 24 && sizeof(Triangle) == 12);

// Items that pass in one call, so that a count is believed only as far as bytes follow it.
constexpr std::size_t kItemsPerStep = 4096;

template <class T>
void WriteItems(ISave& save, const T* items, std::size_t count) {
    WriteWhole(save, static_cast<std::int32_t>(count));
    std::uint32_t written = 0;
    for (std::size_t done = 0; done < count; done += kItemsPerStep) {
        const std::size_t step = std::min(kItemsPerStep, count - done);
        save.Write(items + done, static_cast<std::uint32_t>(step * sizeof(T)), &written);
    }
}

// The items that are whole, at most as many as the count in front of them says.
template <class T>
std::vector<T> ReadItems(ILoad& load) {
    std::int32_t count = 0;
    if (!ReadWhole(load, count) || count <= 0) return {};
    std::vector<T> items;
    std::size_t missing = static_cast<std::size_t>(count);
    while (missing > 0) {
        const std::size_t step = std::min(kItemsPerStep, missing);
        const std::size_t before = items.size();
        items.resize(before + step);
        std::uint32_t read = 0;
        load.Read(items.data() + before, static_cast<std::uint32_t>(step * sizeof(T)), &read);
        items.resize(before + std::min(step, read / sizeof(T)));
        if (read != step * sizeof(T)) break;
        missing -= step;
    }
    return items;
}

void ReadFaces(ILoad& load, TVL::CMesh& mesh) {
    const std::vector<Triangle> triangles = ReadItems<Triangle>(load);
    mesh.faces.clear();
    for (const Triangle& triangle : triangles)
        mesh.faces.insert(mesh.faces.end(), triangle.begin(), triangle.end());
    mesh.textureFaces.assign(mesh.faces.size(), 0);
}

std::vector<Triangle> TrianglesOf(const TVL::CMesh& mesh) {
    std::vector<Triangle> triangles(mesh.faces.size() / 3);
    for (std::size_t index = 0; index < triangles.size(); ++index)
        std::copy_n(mesh.faces.data() + index * 3, 3, triangles[index].begin());
    return triangles;
}

}  // namespace

IOResult CustomHelperObject::Save(ISave* save) {
    save->BeginChunk(kVerticesChunk);
    WriteItems(*save, mesh.vertices.data(), mesh.vertices.size());
    save->EndChunk();

    save->BeginChunk(kFacesChunk);
    const std::vector<Triangle> triangles = TrianglesOf(mesh);
    WriteItems(*save, triangles.data(), triangles.size());
    save->EndChunk();

    save->BeginChunk(kLookChunk);
    WriteWhole(*save, colour);
    WriteWhole(*save, wireframe);
    WriteWhole(*save, backfaceCull);
    WriteWhole(*save, reserved);
    save->EndChunk();
    return IO_OK;
}

IOResult CustomHelperObject::Load(ILoad* load) {
    while (load->OpenChunk() == IO_OK) {
        switch (load->CurChunkID()) {
            case kVerticesChunk:
                mesh.vertices = ReadItems<Vertex>(*load);
                break;
            case kFacesChunk:
                ReadFaces(*load, mesh);
                break;
            case kLookChunk:
                ReadWhole(*load, colour) && ReadWhole(*load, wireframe) &&
                    ReadWhole(*load, backfaceCull) && ReadWhole(*load, reserved[0]) &&
                    ReadWhole(*load, reserved[1]);
                break;
            default:
                break;
        }
        load->CloseChunk();
    }
    meshDirty = 1;
    return IO_OK;
}
