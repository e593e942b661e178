#pragma once

#include <vector>

#include "headless/drawing/draw_window.h"
#include "host/graphics_window.h"
#include "host/mesh.h"
#include "host/node.h"
#include "host/object.h"

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
int DisplaySeen(Mesh& mesh, TimeValue t, INode* node, ViewExp* view);
int DisplaySeen(const std::vector<Line>& lines, TimeValue t, INode* node, ViewExp* view);
int HitTestSeen(Mesh& mesh, const HitQuery& query);
int HitTestSeen(const std::vector<Line>& lines, const HitQuery& query);
Box3 BoundsOf(const Mesh& mesh);
Box3 BoundsOf(const std::vector<Line>& lines);

// An object, of whatever base, that shows a mesh or lines: what `SeenAt` gives.
template <class Base, class Seen>
class Visible : public Base {
  public:
    int Display(TimeValue t, INode* node, ViewExp* view, int) override {
        Seen seen = SeenAt(t, node);
        return DisplaySeen(seen, t, node, view);
    }
    int HitTest(TimeValue t, INode* node, int type, int crossing, int flags, IPoint2* point,
                ViewExp* view) override {
        Seen seen = SeenAt(t, node);
        return HitTestSeen(seen, {t, node, type, crossing, flags, point, view});
    }
    void GetLocalBoundBox(TimeValue t, INode* node, ViewExp*, Box3& box) override {
        box = BoundsOf(SeenAt(t, node));
    }

  private:
    virtual Seen SeenAt(TimeValue t, INode* node) = 0;  // the node may be null
};

}  // namespace headless
