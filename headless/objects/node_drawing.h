#pragma once

#include <vector>

#include "headless/drawing/draw_window.h"
#include "host/graphics_window.h"
#include "host/mesh.h"
#include "host/node.h"

// How the host's own objects show in its viewports, and are hit there: at the node's place, in its
// wire colour, with white edges if it is selected. Into a window that is not the host's own, or
// without a node, nothing is drawn, and nothing is hit there.
namespace headless {

// Lines from place to place, behind those that are there.
void AddLines(const std::vector<Point3>& places, std::vector<Line>& lines);

// What a call of HitTest asks, as BaseObject gets it.
struct HitQuery {
    TimeValue t;
    INode* node;
    int type;
    int crossing;
    int flags;
    const IPoint2* points;
    ViewExp* view;
};

// The results are those of BaseObject's operations.
int DisplayMesh(Mesh& mesh, TimeValue t, INode* node, ViewExp* view);
int DisplayLines(const std::vector<Line>& lines, TimeValue t, INode* node, ViewExp* view);
int HitTestMesh(Mesh& mesh, const HitQuery& query);
int HitTestLines(const std::vector<Line>& lines, const HitQuery& query);

Box3 BoundsOf(const std::vector<Line>& lines);

}  // namespace headless
