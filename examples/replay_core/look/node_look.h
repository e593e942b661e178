#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tvl/adaptor_interface.h"
#include "tvl/matrix4.h"

namespace replay {

// What a Core sees of a scene node at a moment of scene time, whether the node is its own or not. A
// kind of snapshot that the node does not lend is empty.
struct NodeLook {
    struct Transform {
        TVL::CMatrix4 world;  // from object space to Core space
        TVL::CMatrix4 local;  // see TVL::CSnapshot
    };
    struct Bounds {  // object space, host units
        std::array<double, 3> least;
        std::array<double, 3> most;
    };
    struct Mesh {
        std::size_t vertices = 0;
        std::size_t faces = 0;
        std::size_t textureVertices = 0;
        std::optional<Bounds> bounds;  // empty if no vertex has a finite place
    };
    struct Lens {
        double fieldOfViewDegrees = 0;
        int fieldOfViewType = 0;    // 0 across the width, 1 the height, 2 the diagonal
        double targetDistance = 0;  // host units
    };
    struct Shape {
        std::vector<double> curveLengths;  // host units
    };

    std::uint32_t handle = 0;  // the host's, by which the node was asked for
    bool isThere = false;      // the rest says nothing if the host has no such node

    std::string name;    // the host's
    std::string parent;  // the host's name; empty at the top of the scene
    std::size_t children = 0;
    bool isVisible = false;
    std::optional<Transform> transform;
    bool lendsHelper = false;  // a helper snapshot can only be written to
    std::optional<Mesh> mesh;
    std::optional<Lens> lens;
    std::optional<Shape> shape;
};

// Looks at the nodes with these handles, in their order. Nothing is changed or kept.
std::vector<NodeLook> LookAtNodes(TVL::AdaptorInterface& adaptor,
                                  std::span<const std::uint32_t> handles, double seconds);

}  // namespace replay
