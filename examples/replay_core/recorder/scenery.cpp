#include "replay_core/recorder/scenery.h"

#include <span>

#include "replay_core/recorder/loans.h"

namespace replay {
namespace {

FoundNodes Find(TVL::AdaptorInterface& adaptor, const std::optional<std::uint32_t>& handle) {
    return FoundNodes::ByHandle(adaptor, {handle ? &*handle : nullptr, handle ? 1U : 0U});
}

bool HasSurface(TVL::CoreNode& node, double seconds) {
    const MeshLoan mesh(node, seconds);
    return mesh && mesh->GetMesh().FaceCount() > 0;
}

bool HasCurves(TVL::CoreNode& node, double seconds) {
    const ShapeLoan shape(node, seconds);
    return shape && shape->GetCurveCount() > 0;
}

std::string Check(TVL::AdaptorInterface& adaptor, std::optional<std::uint32_t> handle,
                  TVL::CoreNode* node, bool (*suits)(TVL::CoreNode&, double), const char* lack) {
    if (!handle) return {};
    if (!node) return "the host has no node " + std::to_string(*handle);
    if (!suits(*node, adaptor.GetCurrentTime())) return '"' + node->GetName() + "\" " + lack;
    return {};
}

}  // namespace

Scenery::Scenery(TVL::AdaptorInterface& adaptor, std::optional<std::uint32_t> ground,
                 std::optional<std::uint32_t> guide)
    : ground_(Find(adaptor, ground)),
      guide_(Find(adaptor, guide)),
      error_(Check(adaptor, ground, Ground(), HasSurface, "has no surface to stand on")) {
    if (error_.empty())
        error_ = Check(adaptor, guide, Guide(), HasCurves, "has no curves to go along");
}

}  // namespace replay
