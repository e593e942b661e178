#include "interchange/gltf_mesh.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <span>

namespace interchange {
namespace {

using Vertex = SharedVertices::Vertex;

// From what a screen is given, as sRGB (IEC 61966-2-1:1999).
float LinearLight(float shown) {
    const double part = std::isfinite(shown) ? std::clamp(double{shown}, 0.0, 1.0) : 0;
    return static_cast<float>(part <= 0.04045 ? part / 12.92
                                              : std::pow((part + 0.055) / 1.055, 2.4));
}

// A file has none but unit normals.
std::array<float, 3> UnitNormal(const std::array<float, 3>& normal) {
    const double length = std::hypot(double{normal[0]}, double{normal[1]}, double{normal[2]});
    if (!std::isfinite(length) || length == 0) return {0, 1, 0};
    const auto part = [&](std::size_t i) { return static_cast<float>(double{normal[i]} / length); };
    return {part(0), part(1), part(2)};
}

Vertex VertexOf(const ShapeVertex& vertex) {
    Vertex numbers{};
    std::ranges::copy(vertex.place, numbers.begin());
    std::ranges::copy(UnitNormal(vertex.normal), numbers.begin() + 3);
    std::ranges::transform(vertex.colour, numbers.begin() + 6, LinearLight);
    return numbers;
}

bool IsTriangle(const std::array<ShapeVertex, 3>& corners) {
    for (const ShapeVertex& corner : corners)
        if (!std::ranges::all_of(corner.place, [](float part) { return std::isfinite(part); }))
            return false;
    return corners[0].place != corners[1].place && corners[1].place != corners[2].place &&
           corners[2].place != corners[0].place;
}

}  // namespace

SharedVertices::Mesh SharedVertices::Add(const std::vector<ShapeVertex>& shape) {
    Mesh mesh{.firstVertex = vertices_.size(), .firstIndex = indices_.size()};
    std::map<Vertex, std::uint32_t> numbers;
    for (std::size_t at = 0; at + 3 <= shape.size(); at += 3) {
        const std::array<ShapeVertex, 3> corners = {shape[at], shape[at + 1], shape[at + 2]};
        if (!IsTriangle(corners)) continue;
        for (const ShapeVertex& corner : corners) {
            const auto next = static_cast<std::uint32_t>(numbers.size());
            const auto [entry, isNew] = numbers.emplace(VertexOf(corner), next);
            if (isNew) vertices_.push_back(entry->first);
            indices_.push_back(entry->second);
        }
    }
    mesh.vertices = vertices_.size() - mesh.firstVertex;
    mesh.indices = indices_.size() - mesh.firstIndex;
    for (std::size_t axis = 0; axis < 3 && mesh.vertices > 0; ++axis) {
        const auto part = [axis](const Vertex& vertex) { return vertex[axis]; };
        const auto own = std::span(vertices_).subspan(mesh.firstVertex);
        mesh.least[axis] = std::ranges::min_element(own, {}, part)->at(axis);
        mesh.most[axis] = std::ranges::max_element(own, {}, part)->at(axis);
    }
    return mesh;
}

}  // namespace interchange
