#include <utility>

#include "headless/drawing/draw_window.h"
#include "headless/scene/scene.h"
#include "headless/viewport.h"
#include "headless/viewport/render_limits.h"
#include "headless/viewport/seen_scene.h"
#include "headless/viewport/shown_nodes.h"

namespace headless {
namespace {

constexpr std::uint32_t kGridLimits = GW_WIREFRAME | GW_Z_BUFFER;
constexpr Colour kName{0.92F, 0.92F, 0.88F};

void Display(SceneNode& node, TimeValue t, std::uint32_t limits, DrawWindow& window) {
    Object* const shown = node.EvalWorldState(t, true).obj;
    if (!shown) return;
    DrawView view(window);
    window.setRndLimits(limits);
    shown->Display(t, &node, &view, 0);
}

void DrawName(SceneNode& node, TimeValue t, DrawWindow& window) {
    window.setTransform(node.GetNodeTM(t, nullptr));
    window.setColor(LINE_COLOR, kName.red, kName.green, kName.blue);
    window.DrawWord({}, node.Name());
}

}  // namespace

// What draws itself may delete nodes, so each is looked for before it is asked. The camera that is
// looked through does not show.
SeenScene SeeScene(const ViewportSettings& settings, TimeValue t) {
    const AimedView aimed = AimView(settings, t);
    if (!aimed.error.empty()) return {aimed, {}};
    DrawWindow window(aimed.view);
    if (settings.showsGrid) {
        window.setRndLimits(kGridLimits);
        DrawGrid(aimed.grid, window);
    }
    for (SceneNode* node : ShownNodes()) {
        if (node == aimed.camera || !TheScene().Contains(node)) continue;
        Display(*node, t, RenderLimits(settings), window);
        if (settings.showsNames && TheScene().Contains(node)) DrawName(*node, t, window);
    }
    return {aimed, window.List()};
}

Drawing DrawScene(const ViewportSettings& settings, TimeValue t) {
    SeenScene seen = SeeScene(settings, t);
    return {std::move(seen.aimed.error), std::move(seen.list)};
}

}  // namespace headless
