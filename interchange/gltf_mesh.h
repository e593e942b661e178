#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "interchange/take.h"

namespace interchange {

// The meshes of a file in two rows of numbers: vertices, each once in its mesh, and the vertices of
// triangles by their number in it.
class SharedVertices {
  public:
    // Of a vertex: place, normal, and colour in linear light.
    static constexpr std::size_t kNumbers = 9;
    using Vertex = std::array<float, kNumbers>;

    struct Mesh {
        std::size_t firstVertex = 0;
        std::size_t vertices = 0;
        std::size_t firstIndex = 0;
        std::size_t indices = 0;  // none if nothing of the shape is a triangle
        std::array<float, 3> least{};
        std::array<float, 3> most{};
    };

    // Triangles without a surface, or with a corner nowhere, are left out.
    Mesh Add(const std::vector<ShapeVertex>& shape);

    const std::vector<Vertex>& Vertices() const { return vertices_; }
    const std::vector<std::uint32_t>& Indices() const { return indices_; }

  private:
    std::vector<Vertex> vertices_;
    std::vector<std::uint32_t> indices_;
};

}  // namespace interchange
