#include "headless/drawing/draw_window.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "headless/drawing/drawn_mesh.h"
#include "headless/drawing/hit_tests.h"
#include "headless/values/vector.h"
#include "host/graphics_window.h"
#include "host/mesh.h"

GraphicsWindow::~GraphicsWindow() = default;
ViewExp::~ViewExp() = default;

// Without places nothing is in the region.
void MakeHitRegion(HitRegion& region, int type, int crossing, int epsilon, const IPoint2* points) {
    region = {.type = points ? type : 0, .crossing = crossing, .epsilon = epsilon, .corners = {}};
    if (!points) return;
    region.corners[0] = points[0];
    region.corners[1] = type == HITTYPE_RECT ? points[1] : points[0];
}

// A window that is not the host's own has nothing drawn into it and shows nothing to hit.
using headless::DrawWindow;

int Mesh::render(GraphicsWindow* window, Material*, RECT*, int, int) {
    if (auto* const own = dynamic_cast<DrawWindow*>(window)) own->DrawMesh(*this);
    return 0;
}

int Mesh::select(GraphicsWindow* window, Material*, HitRegion* region, int, int) {
    const auto* const own = dynamic_cast<const DrawWindow*>(window);
    return own && region && own->Hits(*this, *region) ? 1 : 0;
}

namespace headless {
namespace {

// What is not a number counts as 0.
float Channel(float value) {
    return std::isnan(value) ? 0.0F : std::clamp(value, 0.0F, 1.0F);
}

bool HasEdges(std::uint32_t limits) {
    return (limits & GW_WIREFRAME) != 0;
}

bool IsLit(std::uint32_t limits) {
    return (limits & (GW_ILLUM | GW_SPECULAR)) != 0;
}

// A wireframe has faces only where they are lit; otherwise faces are of one colour if nothing
// lights them.
bool HasFaces(std::uint32_t limits) {
    return !HasEdges(limits) || IsLit(limits);
}

}  // namespace

void DrawWindow::setColor(int type, float red, float green, float blue) {
    const Colour colour{Channel(red), Channel(green), Channel(blue)};
    if (type == LINE_COLOR) line_ = colour;
    if (type == FILL_COLOR) fill_ = colour;
}

// The faces that look away are left in: they count for the normals of their neighbours, and whoever
// draws the batch culls them.
void DrawWindow::DrawMesh(const Mesh& mesh) {
    DrawnMesh world = InWorld(mesh, transform_);
    if (HasFaces(limits_)) DrawFaces(world);
    if (!HasEdges(limits_)) return;
    if (limits_ & GW_BACKCULL) DropBackfaces(world, view_);
    DrawEdges(world);
}

void DrawWindow::DrawFaces(const DrawnMesh& mesh) {
    if (mesh.faces.empty()) return;
    const CornerNormals normals = limits_ & GW_FLAT ? FlatNormals(mesh) : SmoothNormals(mesh);
    std::vector<DrawVertex>& vertices = BatchFor(true).vertices;
    for (std::size_t face = 0; face < mesh.faces.size(); ++face)
        for (std::size_t corner = 0; corner < 3; ++corner)
            vertices.push_back(
                {mesh.places[mesh.faces[face].v[corner]], normals[face][corner], fill_});
}

void DrawWindow::DrawEdges(const DrawnMesh& mesh) {
    const auto edges = VisibleEdges(mesh);
    if (edges.empty()) return;
    std::vector<DrawVertex>& vertices = BatchFor(false).vertices;
    for (const auto& [from, to] : edges) {
        vertices.push_back({mesh.places[from], {}, line_});
        vertices.push_back({mesh.places[to], {}, line_});
    }
}

void DrawWindow::DrawLine(const Point3& from, const Point3& to) {
    const Point3 a = transform_.PointTransform(from);
    const Point3 b = transform_.PointTransform(to);
    if (!IsFinite(a) || !IsFinite(b)) return;
    std::vector<DrawVertex>& vertices = BatchFor(false).vertices;
    vertices.push_back({a, {}, line_});
    vertices.push_back({b, {}, line_});
}

void DrawWindow::DrawWord(const Point3& place, std::string text, bool isName) {
    const Point3 world = transform_.PointTransform(place);
    if (IsFinite(world)) list_.texts.push_back({world, line_, std::move(text), isName});
}

bool DrawWindow::Hits(const Mesh& mesh, const HitRegion& region) const {
    DrawnMesh seen = InWorld(mesh, transform_);
    if (limits_ & GW_BACKCULL) DropBackfaces(seen, view_);
    HitTest test(view_, region);
    if (HasFaces(limits_))
        for (std::size_t face = 0; face < seen.faces.size() && !test.IsSettled(); ++face) {
            const auto& [a, b, c] = seen.faces[face].v;
            test.Meet(std::array{seen.places[a], seen.places[b], seen.places[c]});
        }
    if (HasEdges(limits_) && !test.IsSettled())
        for (const auto& [from, to] : VisibleEdges(seen))
            test.Meet(std::array{seen.places[from], seen.places[to]});
    return test.IsHit();
}

bool DrawWindow::Hits(const std::vector<Line>& lines, const HitRegion& region) const {
    HitTest test(view_, region);
    for (const auto& [from, to] : lines) {
        const std::array line{transform_.PointTransform(from), transform_.PointTransform(to)};
        if (IsFinite(line[0]) && IsFinite(line[1])) test.Meet(line);
    }
    return test.IsHit();
}

// The last batch, if it is drawn like what comes next; what was drawn in between keeps its place.
DrawBatch& DrawWindow::BatchFor(bool isTriangles) {
    const DrawBatch next{.isTriangles = isTriangles,
                         .isLit = isTriangles && IsLit(limits_),
                         .usesDepth = (limits_ & GW_Z_BUFFER) != 0,
                         .cullsBackfaces = isTriangles && (limits_ & GW_BACKCULL) != 0,
                         .vertices = {}};
    const auto manner = [](const DrawBatch& batch) {
        return std::array{batch.isTriangles, batch.isLit, batch.usesDepth, batch.cullsBackfaces};
    };
    if (list_.batches.empty() || manner(list_.batches.back()) != manner(next))
        list_.batches.push_back(next);
    return list_.batches.back();
}

}  // namespace headless
