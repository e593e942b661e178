#include <algorithm>
#include <array>
#include <utility>

#include "headless/drawing/draw_window.h"
#include "headless/scene/scene.h"
#include "headless/scene_view.h"
#include "headless/viewport.h"
#include "headless/viewport/shown_nodes.h"
#include "headless/viewport/view_camera.h"

namespace headless {
namespace {

constexpr std::uint32_t kGridLimits = GW_WIREFRAME | GW_Z_BUFFER;
// What a node finds set in the window when its turn comes.
std::uint32_t RenderLimits(const ViewportSettings& settings) {
    return GW_Z_BUFFER | (settings.isWireframe ? GW_WIREFRAME : GW_ILLUM);
}

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
    window.DrawWord({}, node.Name(), true);
}

std::vector<std::uint32_t> HandlesOf(const std::vector<SceneNode*>& nodes) {
    std::vector<std::uint32_t> handles;
    handles.reserve(nodes.size());
    for (SceneNode* node : nodes)
        handles.push_back(node->Handle());
    return handles;
}

bool Shows(const ViewportSettings& settings, const AimedView& aimed, SceneNode& node, TimeValue t) {
    return &node != aimed.camera && (settings.showsCameras || !CameraOf(node, t));
}

bool IsAsked(const ViewportSettings& settings, const SceneNode& node) {
    return std::ranges::find(settings.namesAsked, node.Name()) != settings.namesAsked.end();
}

std::string NameThatNobodyHas(const ViewportSettings& settings) {
    for (const std::string& name : settings.namesAsked)
        if (!FindNode(name)) return name;
    return {};
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

// What draws itself may delete nodes, so each is looked for before it is asked. The camera that is
// looked through does not show.
SeenScene SeeScene(const ViewportSettings& settings, TimeValue t) {
    AimedView aimed = AimView(settings, t);
    if (const std::string name = NameThatNobodyHas(settings); !name.empty())
        aimed.error = "no node is called \"" + name + '"';
    if (!aimed.error.empty()) return {aimed, {}};
    DrawWindow window(aimed.view);
    if (settings.showsGrid) {
        window.setRndLimits(kGridLimits);
        DrawGrid(aimed.grid, window);
        WriteMetres(aimed.grid, t, window);
    }
    for (SceneNode* node : ShownNodes()) {
        if (!TheScene().Contains(node) || !Shows(settings, aimed, *node, t)) continue;
        Display(*node, t, RenderLimits(settings), window);
        if (settings.showsNames && TheScene().Contains(node) && !IsAsked(settings, *node))
            DrawName(*node, t, window);
    }
    for (SceneNode* node : TheScene().InOrder())
        if (IsAsked(settings, *node)) DrawName(*node, t, window);
    DrawList list = window.List();
    list.caption = settings.caption;
    return {aimed, std::move(list)};
}

DrawList DrawNode(std::uint32_t handle, TimeValue t) {
    SceneNode* const node = TheScene().Find(handle);
    if (!node) return {};
    DrawWindow window{View{}};
    const bool isSelected = node->IsSelected();
    node->MarkSelected(false);
    Display(*node, t, RenderLimits({}), window);
    node->MarkSelected(isSelected);
    return window.List();
}

Drawing DrawScene(const ViewportSettings& settings, TimeValue t) {
    SeenScene seen = SeeScene(settings, t);
    return {std::move(seen.aimed.error), std::move(seen.list)};
}

// By handle, since what is asked there may take nodes out of the scene.
std::vector<std::uint32_t> NodesHit(const ViewportSettings& settings, TimeValue t,
                                    const HitRegion& region) {
    const AimedView aimed = AimView(settings, t);
    if (!aimed.error.empty()) return {};
    std::vector<std::uint32_t> hit;
    for (const std::uint32_t handle : HandlesOf(ShownNodes())) {
        SceneNode* const node = TheScene().Find(handle);
        if (!node || !Shows(settings, aimed, *node, t)) continue;
        if (IsHit(*node, t, aimed.view, RenderLimits(settings), region)) hit.push_back(handle);
    }
    return hit;
}

}  // namespace headless
