#include "headless/objects/node_drawing.h"

namespace headless {
namespace {

constexpr int kEpsilon = 4;  // pixels around the mouse
constexpr int kAllComponents = 0xFF;

// The window of the view, ready for what the node shows; null if there is nothing to do.
DrawWindow* WindowFor(TimeValue t, INode* node, ViewExp* view) {
    auto* const window = view ? dynamic_cast<DrawWindow*>(view->getGW()) : nullptr;
    if (!window || !node) return nullptr;
    window->setTransform(node->GetObjectTM(t));
    return window;
}

// Of a colour with red in its low byte.
float Channel(std::uint32_t colour, int index) {
    return static_cast<float>(colour >> (8 * index) & 0xFF) / 255;
}

void SetColours(DrawWindow& window, INode& node) {
    const std::uint32_t wire = node.GetWireColor();
    for (const int type : {LINE_COLOR, FILL_COLOR})
        window.setColor(type, Channel(wire, 0), Channel(wire, 1), Channel(wire, 2));
    if (node.Selected()) window.setColor(LINE_COLOR, 1, 1, 1);
}

HitRegion RegionOf(const HitQuery& query) {
    HitRegion region;
    MakeHitRegion(region, query.type, query.crossing, kEpsilon, query.points);
    return region;
}

}  // namespace

void AddLines(const std::vector<Point3>& places, std::vector<Line>& lines) {
    for (std::size_t i = 1; i < places.size(); ++i)
        lines.push_back({places[i - 1], places[i]});
}

// Of a selected node the edges show on top of its faces.
int DisplaySeen(Mesh& mesh, TimeValue t, INode* node, ViewExp* view) {
    DrawWindow* const window = WindowFor(t, node, view);
    if (!window) return 0;
    SetColours(*window, *node);
    const std::uint32_t limits = window->getRndLimits();
    if (node->Selected()) window->setRndLimits(limits | GW_WIREFRAME);
    mesh.render(window, node->Mtls(), nullptr, kAllComponents, node->NumMtls());
    window->setRndLimits(limits);
    return 0;
}

int DisplaySeen(const std::vector<Line>& lines, TimeValue t, INode* node, ViewExp* view) {
    DrawWindow* const window = WindowFor(t, node, view);
    if (!window) return 0;
    SetColours(*window, *node);
    for (const Line& line : lines)
        window->DrawLine(line.from, line.to);
    return 0;
}

int HitTestSeen(Mesh& mesh, const HitQuery& query) {
    DrawWindow* const window = WindowFor(query.t, query.node, query.view);
    if (!window) return 0;
    HitRegion region = RegionOf(query);
    return mesh.select(window, query.node->Mtls(), &region, query.flags & HIT_ABORTONHIT,
                       query.node->NumMtls());
}

int HitTestSeen(const std::vector<Line>& lines, const HitQuery& query) {
    const DrawWindow* const window = WindowFor(query.t, query.node, query.view);
    return window && window->Hits(lines, RegionOf(query)) ? 1 : 0;
}

Box3 BoundsOf(const Mesh& mesh) {
    return mesh.getBoundingBox();
}

Box3 BoundsOf(const std::vector<Line>& lines) {
    Box3 box;
    for (const Line& line : lines) {
        box += line.from;
        box += line.to;
    }
    return box;
}

}  // namespace headless
