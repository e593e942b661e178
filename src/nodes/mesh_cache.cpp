#include "nodes/mesh_cache.h"

#include <utility>

void EmptyMeshCache() {
    MeshCache& cache = ConvertedMeshes();
    ++cache.timesEmptied;
    std::exchange(cache.meshes, {});
}
