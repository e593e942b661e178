#include <array>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "headless/memory_chunks.h"
#include "headless/objects/own_classes.h"
#include "headless/primitives.h"
#include "headless/storage/plain_chunks.h"
#include "host/interface.h"

namespace headless {
namespace {

// The plug-in's guide object, and the chunks in which it is stored.
constexpr Class_ID kGuideClassId{0x22E322A5, 0x3010606F};
constexpr std::uint16_t kPlacesChunk = 1;
constexpr std::uint16_t kCornersChunk = 2;
constexpr std::uint16_t kLookChunk = 3;

struct StoredLook {
    std::array<float, 3> colour;
    std::uint8_t isWireframe;
    std::uint8_t cullsBackfaces;
    std::array<std::uint8_t, 2> reserved;
};
static_assert(sizeof(StoredLook) == 16);

std::vector<std::array<double, 3>> PlacesOf(const Mesh& mesh) {
    std::vector<std::array<double, 3>> places;
    places.reserve(mesh.verts.size());
    for (const Point3& p : mesh.verts)
        places.push_back({double{p.x}, double{p.y}, double{p.z}});
    return places;
}

std::vector<std::array<std::uint32_t, 3>> CornersOf(const Mesh& mesh) {
    std::vector<std::array<std::uint32_t, 3>> corners;
    corners.reserve(mesh.faces.size());
    for (const Face& face : mesh.faces)
        corners.push_back({face.v[0], face.v[1], face.v[2]});
    return corners;
}

std::vector<std::byte> StoredForm(const Mesh& mesh, const GuideLook& look) {
    return SavedBytes([&](ISave* save) {
        SaveTable(*save, kPlacesChunk, PlacesOf(mesh));
        SaveTable(*save, kCornersChunk, CornersOf(mesh));
        SaveChunk(*save, kLookChunk,
                  StoredLook{look.colour, static_cast<std::uint8_t>(look.isWireframe), 0, {}});
        return IO_OK;
    });
}

}  // namespace

Object* NewGuide(Object* shown, const GuideLook& look) {
    void* const made = GetCOREInterface()->CreateInstance(HELPER_CLASS_ID, kGuideClassId);
    Object* guide = static_cast<Object*>(made);
    if (guide && LoadBytes(StoredForm(MeshOf(*shown, 0), look), *guide) != IO_OK) {
        guide->DeleteThis();
        guide = nullptr;
    }
    shown->DeleteMe();
    return guide;
}

}  // namespace headless
