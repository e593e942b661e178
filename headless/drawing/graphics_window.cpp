#include "host/graphics_window.h"

GraphicsWindow::~GraphicsWindow() = default;
ViewExp::~ViewExp() = default;

// Without places nothing is in the region.
void MakeHitRegion(HitRegion& region, int type, int crossing, int epsilon, const IPoint2* points) {
    region = {.type = points ? type : 0, .crossing = crossing, .epsilon = epsilon, .corners = {}};
    if (!points) return;
    region.corners[0] = points[0];
    region.corners[1] = type == HITTYPE_RECT ? points[1] : points[0];
}
