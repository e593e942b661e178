#include "headless/drawing/hit_tests.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace headless {
namespace {

// What is left of a line or triangle between the nearest and the farthest that the view shows.
struct Outline {
    std::vector<ScreenPlace> corners;
    bool isWhole = true;  // nothing was cut off
};

struct ScreenBox {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    bool Contains(const ScreenPlace& p) const {
        return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom;
    }
};

ClipPlace Between(const ClipPlace& a, const ClipPlace& b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share, a.z + (b.z - a.z) * share,
            a.w + (b.w - a.w) * share};
}

// I. Sutherland and G. Hodgman, Reentrant Polygon Clipping, 1974: the part of a convex outline
// where `height` is not negative.
template <class Height>
std::vector<ClipPlace> Cut(const std::vector<ClipPlace>& outline, Height height) {
    std::vector<ClipPlace> kept;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const ClipPlace& from = outline[i];
        const ClipPlace& to = outline[(i + 1) % outline.size()];
        const double a = height(from);
        const double b = height(to);
        if (a >= 0) kept.push_back(from);
        if ((a < 0) != (b < 0)) kept.push_back(Between(from, to, a / (a - b)));
    }
    return kept;
}

Outline OutlineOf(const View& view, std::span<const Point3> corners) {
    std::vector<ClipPlace> places;
    for (const Point3& corner : corners)
        places.push_back(ToClip(view, corner));
    const auto fromNear = [](const ClipPlace& p) { return p.z + p.w; };
    const auto fromFar = [](const ClipPlace& p) { return p.w - p.z; };
    Outline outline;
    outline.isWhole = std::all_of(places.begin(), places.end(), [&](const ClipPlace& p) {
        return fromNear(p) >= 0 && fromFar(p) >= 0;
    });
    if (!outline.isWhole) places = Cut(Cut(places, fromNear), fromFar);
    for (const ClipPlace& place : places) {
        if (!(place.w > 0)) return {};
        outline.corners.push_back(OnScreen(view, place));
    }
    return outline;
}

double DistanceToEdge(const ScreenPlace& p, const ScreenPlace& a, const ScreenPlace& b) {
    const double x = b.x - a.x;
    const double y = b.y - a.y;
    const double square = x * x + y * y;
    const double along = square > 0 ? ((p.x - a.x) * x + (p.y - a.y) * y) / square : 0;
    const double share = std::clamp(along, 0.0, 1.0);
    return std::hypot(a.x + x * share - p.x, a.y + y * share - p.y);
}

// By counting the edges that a half line to the right crosses.
bool Surrounds(const std::vector<ScreenPlace>& outline, const ScreenPlace& p) {
    bool isInside = false;
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const ScreenPlace& a = outline[i];
        const ScreenPlace& b = outline[(i + 1) % outline.size()];
        if ((a.y > p.y) == (b.y > p.y)) continue;
        if (p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y)) isInside = !isInside;
    }
    return isInside;
}

// Y.-D. Liang and B. Barsky, A New Concept and Method for Line Clipping, 1984.
bool Crosses(const ScreenBox& box, const ScreenPlace& a, const ScreenPlace& b) {
    const double x = b.x - a.x;
    const double y = b.y - a.y;
    const double along[4] = {-x, x, -y, y};
    const double room[4] = {a.x - box.left, box.right - a.x, a.y - box.top, box.bottom - a.y};
    double first = 0;
    double last = 1;
    for (int side = 0; side < 4; ++side) {
        if (along[side] == 0) {
            if (room[side] < 0) return false;
            continue;
        }
        const double share = room[side] / along[side];
        if (along[side] < 0)
            first = std::max(first, share);
        else
            last = std::min(last, share);
    }
    return first <= last;
}

template <class Meets>
bool AnyEdge(const std::vector<ScreenPlace>& outline, Meets meets) {
    for (std::size_t i = 0; i < outline.size(); ++i)
        if (meets(outline[i], outline[(i + 1) % outline.size()])) return true;
    return false;
}

bool TouchesPoint(const std::vector<ScreenPlace>& outline, const HitRegion& region) {
    const ScreenPlace point{double(region.corners[0].x), double(region.corners[0].y)};
    return Surrounds(outline, point) || AnyEdge(outline, [&](const auto& a, const auto& b) {
               return DistanceToEdge(point, a, b) <= std::max(region.epsilon, 0);
           });
}

ScreenBox BoxOf(const HitRegion& region) {
    const auto [left, right] = std::minmax(region.corners[0].x, region.corners[1].x);
    const auto [top, bottom] = std::minmax(region.corners[0].y, region.corners[1].y);
    return {double(left), double(top), double(right), double(bottom)};
}

bool TouchesBox(const std::vector<ScreenPlace>& outline, const ScreenBox& box) {
    return Surrounds(outline, {box.left, box.top}) ||
           AnyEdge(outline, [&](const auto& a, const auto& b) { return Crosses(box, a, b); });
}

bool Touches(const Outline& outline, const HitRegion& region) {
    if (region.type == HITTYPE_POINT) return TouchesPoint(outline.corners, region);
    if (region.type != HITTYPE_RECT) return false;
    const ScreenBox box = BoxOf(region);
    if (region.crossing != 0) return TouchesBox(outline.corners, box);
    return outline.isWhole && !outline.corners.empty() &&
           std::all_of(outline.corners.begin(), outline.corners.end(),
                       [&](const ScreenPlace& corner) { return box.Contains(corner); });
}

}  // namespace

bool LooksAway(const View& view, const Point3& a, const Point3& b, const Point3& c) {
    const ClipPlace p = ToClip(view, a);
    const ClipPlace q = ToClip(view, b);
    const ClipPlace r = ToClip(view, c);
    return p.x * (q.y * r.w - r.y * q.w) + p.y * (q.w * r.x - r.w * q.x) +
               p.w * (q.x * r.y - r.x * q.y) <
           0;
}

void HitTest::Meet(std::span<const Point3> corners) {
    if (Touches(OutlineOf(view_, corners), region_))
        isHit_ = true;
    else if (NeedsAll())
        isMissed_ = true;
}

}  // namespace headless
