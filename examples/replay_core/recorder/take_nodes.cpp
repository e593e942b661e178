#include "replay_core/recorder/take_nodes.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "replay_core/motion/body_part.h"
#include "replay_core/motion/motion.h"
#include "replay_core/recorder/helper_look.h"
#include "replay_core/recorder/transform_parts.h"
#include "replay_core/state/node_book.h"
#include "tvl/mesh.h"

namespace replay {
namespace {

// Makes what is not there of a take's nodes, and notes the first that the host does not make.
class Maker {
  public:
    Maker(TVL::AdaptorInterface& adaptor, Take& take, TakeNodes& nodes)
        : adaptor_(adaptor), take_(take), nodes_(nodes) {}

    void FindOrMakeCamera(const std::string& name) {
        nodes_.camera = Find(name);
        nodes_.isCameraNew = !nodes_.camera;
        if (nodes_.isCameraNew)
            nodes_.camera =
                Accept(adaptor_.CreateLensNode(&take_, name, nullptr, &take_.Book()), name);
    }

    void FindOrMakeJoint(const std::string& name, TVL::CoreNode* parent, const TVL::CMesh& bones,
                         const Colour& colour) {
        TVL::CoreNode* node = Find(name);
        if (!node) {
            node = Accept(adaptor_.CreateHelperNode(&take_, name, parent, {}, &take_.Book()), name);
            if (node) DressNode(*node, bones, colour);
        }
        nodes_.joints.push_back(node);
    }

  private:
    TVL::CoreNode* Find(const std::string& name) const {
        return AsCoreNode(adaptor_.FindNode(&take_, name));
    }

    TVL::CoreNode* Accept(TVL::CNode* made, const std::string& name) {
        if (!made) nodes_.error = "the host made no node for \"" + name + "\"";
        return AsCoreNode(made);
    }

    TVL::AdaptorInterface& adaptor_;
    Take& take_;
    TakeNodes& nodes_;
};

std::string NameBesideJoints(const Motion& motion, std::string_view name) {
    const std::vector<std::string> names = UniqueJointNames(motion);
    std::string free(name);
    while (std::ranges::find(names, free) != names.end())
        free += "_";
    return free;
}

}  // namespace

std::string CameraName(const Motion& motion) {
    return NameBesideJoints(motion, "Camera");
}

std::string GuideName(const Motion& motion) {
    return NameBesideJoints(motion, "Guide");
}

TakeNodes FindOrMakeNodes(TVL::AdaptorInterface& adaptor, const Motion& motion,
                          double metresPerUnit, Take& take) {
    TakeNodes nodes;
    take.Book().MakeRoom(motion.joints.size() + 1);
    Maker maker(adaptor, take, nodes);
    // The camera comes first: a new node tells how large the others have to be.
    maker.FindOrMakeCamera(CameraName(motion));
    if (!nodes.camera) return nodes;
    nodes.hostUnitsPerMetre = HostUnitsPerMetre(*nodes.camera, adaptor.GetCurrentTime());

    const std::vector<std::string> names = UniqueJointNames(motion);
    const std::vector<TVL::CMesh> bones =
        BoneMeshes(motion, metresPerUnit * nodes.hostUnitsPerMetre, nodes.hostUnitsPerMetre);
    for (std::size_t i = 0; i < names.size() && nodes.error.empty(); ++i) {
        const Joint& joint = motion.joints[i];
        TVL::CoreNode* const parent =
            joint.parent == kNoJoint ? nullptr : nodes.joints[joint.parent];
        maker.FindOrMakeJoint(names[i], parent, bones[i], ColourOf(SideOf(joint.name)));
    }
    return nodes;
}

}  // namespace replay
