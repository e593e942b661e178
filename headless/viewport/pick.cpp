#include <array>

#include "headless/drawing/draw_window.h"
#include "headless/scene/scene.h"
#include "headless/viewport.h"
#include "headless/viewport/render_limits.h"
#include "headless/viewport/shown_nodes.h"
#include "headless/viewport/view_camera.h"

namespace headless {
namespace {

std::vector<std::uint32_t> HandlesOf(const std::vector<SceneNode*>& nodes) {
    std::vector<std::uint32_t> handles;
    handles.reserve(nodes.size());
    for (SceneNode* node : nodes)
        handles.push_back(node->Handle());
    return handles;
}

// A fresh window for each node, since a hit test may leave anything set in it.
bool IsHit(SceneNode& node, TimeValue t, const View& view, std::uint32_t limits,
           const HitRegion& region) {
    Object* const shown = node.EvalWorldState(t, true).obj;
    if (!shown) return false;
    DrawWindow window(view);
    window.setRndLimits(limits);
    DrawView onWindow(window);
    std::array points{region.corners[0], region.corners[1]};
    return shown->HitTest(t, &node, region.type, region.crossing, HIT_ABORTONHIT, points.data(),
                          &onWindow) != 0;
}

}  // namespace

// By handle, since what is asked there may take nodes out of the scene.
std::vector<std::uint32_t> NodesHit(const ViewportSettings& settings, TimeValue t,
                                    const HitRegion& region) {
    const AimedView aimed = AimView(settings, t);
    if (!aimed.error.empty()) return {};
    std::vector<std::uint32_t> hit;
    for (const std::uint32_t handle : HandlesOf(ShownNodes())) {
        SceneNode* const node = TheScene().Find(handle);
        if (!node || node == aimed.camera) continue;
        if (IsHit(*node, t, aimed.view, RenderLimits(settings), region)) hit.push_back(handle);
    }
    return hit;
}

}  // namespace headless
