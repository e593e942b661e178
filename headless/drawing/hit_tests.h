#pragma once

#include <span>

#include "headless/drawing/view.h"
#include "host/graphics_window.h"
#include "host/point3.h"

// What of a drawing lies where on the screen, worked out without pixels.
namespace headless {

// Whether a triangle shows its back: its corners run clockwise on the screen. In homogeneous
// coordinates, so that corners behind the viewer do not confuse it.
bool LooksAway(const View& view, const Point3& a, const Point3& b, const Point3& c);

// Gathers whether what a drawing consists of lies in a region. A rectangle that must hold all of an
// object is hit only if everything met lies inside it; else one thing that touches is enough. What
// the view does not show, nearer or farther than it reaches, touches nothing. A region of an
// unknown type, or one at no place, is hit by nothing.
class HitTest {
  public:
    HitTest(const View& view, const HitRegion& region) : view_(view), region_(region) {}

    // A line of two places or a triangle of three, in world space and finite.
    void Meet(std::span<const Point3> corners);

    bool IsSettled() const { return isMissed_ || (isHit_ && !NeedsAll()); }
    bool IsHit() const { return isHit_ && !isMissed_; }

  private:
    bool NeedsAll() const { return region_.type == HITTYPE_RECT && region_.crossing == 0; }

    const View& view_;
    const HitRegion& region_;
    bool isHit_ = false;
    bool isMissed_ = false;
};

}  // namespace headless
