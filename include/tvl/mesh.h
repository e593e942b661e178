#pragma once

#include <array>
#include <vector>

#include "tvl/extendable.h"

namespace TVL {

// A triangle mesh as plain arrays, copied whole when passed. It has no normals, smoothing groups,
// materials or edge flags. The order of the fields is part of the contract.
class CMesh final : public CExtendable {
  public:
    // The number of triangles; indices left over at the end of `faces` count for nothing.
    int FaceCount() const { return static_cast<int>(faces.size() / 3); }

    std::vector<std::array<double, 3>> vertices;         // object space, host units
    std::vector<std::array<double, 3>> textureVertices;  // u, v, w
    std::vector<int> faces;         // three indices into `vertices` for each triangle
    std::vector<int> textureFaces;  // three indices into `textureVertices` for each triangle; as
                                    // long as `faces` in a mesh that the adaptor gives out, all
                                    // zero where there are no texture vertices
};

}  // namespace TVL
