#include "replay_core/recorder/take_nodes.h"

#include <algorithm>
#include <cstddef>

#include "replay_core/motion/joint_names.h"
#include "replay_core/recorder/object_scale.h"
#include "replay_core/state/core_node.h"

namespace replay {
namespace {

constexpr double kMarkerRadiusMetres = 0.02;

// An octahedron, the least solid that looks the same from all sides. Object space is in host units.
TVL::CMesh Marker(double hostUnitsPerMetre) {
    const double r = kMarkerRadiusMetres * hostUnitsPerMetre;
    TVL::CMesh mesh;
    mesh.vertices = {{r, 0, 0}, {-r, 0, 0}, {0, r, 0}, {0, -r, 0}, {0, 0, r}, {0, 0, -r}};
    mesh.faces = {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5};
    return mesh;
}

// A joint may bear the camera's name.
std::string CameraName(const std::vector<std::string>& jointNames) {
    std::string name = "Camera";
    while (std::ranges::find(jointNames, name) != jointNames.end())
        name += "_";
    return name;
}

TVL::CoreNode* Find(TVL::AdaptorInterface& adaptor, Take& take, const std::string& name) {
    return AsCoreNode(adaptor.FindNode(&take, name));
}

}  // namespace

TakeNodes FindOrMakeNodes(TVL::AdaptorInterface& adaptor, const Motion& motion, Take& take) {
    const std::vector<std::string> names = UniqueJointNames(motion);
    TakeNodes nodes;
    const auto accept = [&](TVL::CNode* made, const std::string& name) {
        if (!made) nodes.error = "the host made no node for \"" + name + "\"";
        return AsCoreNode(made);
    };

    // The camera comes first: a new node tells how large the others have to be.
    const std::string cameraName = CameraName(names);
    nodes.camera = Find(adaptor, take, cameraName);
    nodes.isCameraNew = !nodes.camera;
    if (nodes.isCameraNew)
        nodes.camera =
            accept(adaptor.CreateLensNode(&take, cameraName, nullptr, &take.Book()), cameraName);
    if (!nodes.camera) return nodes;

    const TVL::CMesh marker = Marker(HostUnitsPerMetre(*nodes.camera, adaptor.GetCurrentTime()));
    for (std::size_t i = 0; i < names.size() && nodes.error.empty(); ++i) {
        const std::size_t parentIndex = motion.joints[i].parent;
        TVL::CoreNode* const parent = parentIndex == kNoJoint ? nullptr : nodes.joints[parentIndex];
        TVL::CoreNode* node = Find(adaptor, take, names[i]);
        if (!node)
            node = accept(adaptor.CreateHelperNode(&take, names[i], parent, marker, &take.Book()),
                          names[i]);
        nodes.joints.push_back(node);
    }
    return nodes;
}

}  // namespace replay
