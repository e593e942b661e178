#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace headless {

struct InspectOptions {
    std::string scene;
    std::vector<std::string> nodes;  // the host's names; all nodes if empty
    double seconds = 0;
};

// What the Core sees of a node, as it tells itself; empty what the node does not lend to it. See
// include/tvl/snapshot.h for spaces and units.
struct InspectedNode {
    using Place = std::array<double, 3>;
    using Matrix = std::array<double, 16>;  // row by row

    struct Transform {
        Matrix world;
        Matrix local;
    };
    struct Bounds {
        Place least;
        Place most;
    };
    struct Mesh {
        std::size_t vertices = 0;
        std::size_t faces = 0;
        std::size_t textureVertices = 0;
        std::optional<Bounds> bounds;
    };
    struct Lens {
        double fieldOfViewDegrees = 0;
        std::size_t fieldOfViewType = 0;
        double targetDistance = 0;
    };

    std::size_t handle = 0;
    std::string name;
    std::string parent;  // empty at the top of the scene
    std::size_t children = 0;
    bool isVisible = false;
    std::optional<Transform> transform;
    bool lendsHelper = false;
    std::optional<Mesh> mesh;
    std::optional<Lens> lens;
    std::optional<std::vector<double>> curveLengths;  // of a shape

    std::vector<std::string> Lent() const;  // the names of the kinds that it lends
};

struct Inspection {
    std::string scene;
    double seconds = 0;
    std::vector<std::string> complaints;  // about the scene file
    std::vector<InspectedNode> nodes;
};

// Opens the scene in a host with plug-in and Core and asks the Core for its nodes, in the order of
// the scene. What cannot be done is thrown as a Failure.
Inspection Inspect(const InspectOptions& options);

void PrintForPerson(std::ostream& out, const Inspection& inspection);
void PrintForProgram(std::ostream& out, const Inspection& inspection);

}  // namespace headless
