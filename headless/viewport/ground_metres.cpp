#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/drawing/view.h"
#include "headless/viewport/ground_grid.h"
#include "headless/viewport/pixel_module.h"
#include "headless/viewport/shown_nodes.h"

namespace headless {
namespace {

constexpr Colour kMetres{0.62F, 0.65F, 0.7F};

// Around the middle of a label, in pixels.
struct Half {
    double width = 27;
    double height = 9;

    explicit Half(const View& view) {
        const int size = LetterSize(view.width, view.height);
        width *= size;
        height *= size;
    }
};

struct ScreenBox {
    double left = 1e9;
    double top = 1e9;
    double right = -1e9;
    double bottom = -1e9;

    bool Meets(const ScreenPlace& label, const Half& half) const {
        return label.x > left - half.width && label.x < right + half.width &&
               label.y > top - half.height && label.y < bottom + half.height;
    }
};

// Nothing of what reaches behind the viewer.
std::optional<ScreenBox> OnScreen(const View& view, const Box3& box) {
    ScreenBox seen;
    for (const Vector& corner : Corners(box)) {
        const ClipPlace clip = ToClip(view, Narrow(corner));
        if (!(clip.w > 0)) return std::nullopt;
        const ScreenPlace place = OnScreen(view, clip);
        seen.left = std::min(seen.left, place.x);
        seen.right = std::max(seen.right, place.x);
        seen.top = std::min(seen.top, place.y);
        seen.bottom = std::max(seen.bottom, place.y);
    }
    return seen;
}

// The ends of what shows of a line, if that is within a rim that a label needs.
std::optional<std::pair<Point3, Point3>> EndsInPicture(const View& view, const Point3& from,
                                                       const Point3& to) {
    const Half half(view);
    const double wide = 1 - 2 * half.width / view.width;
    const double high = 1 - 2 * half.height / view.height;
    const auto rooms = [&](const Point3& p) {
        const ClipPlace clip = ToClip(view, p);
        return std::array{clip.w * wide - clip.x, clip.w * wide + clip.x, clip.w * high - clip.y,
                          clip.w * high + clip.y};
    };
    const std::array atFrom = rooms(from);
    const std::array atTo = rooms(to);
    double first = 0;
    double last = 1;
    for (std::size_t side = 0; side < atFrom.size(); ++side) {
        if (atFrom[side] < 0 && atTo[side] < 0) return std::nullopt;
        const double share = atFrom[side] / (atFrom[side] - atTo[side]);
        if (atFrom[side] < 0) first = std::max(first, share);
        if (atTo[side] < 0) last = std::min(last, share);
    }
    if (first > last) return std::nullopt;
    const Vector along = Vector(to) - Vector(from);
    return std::pair(Narrow(Vector(from) + along * first), Narrow(Vector(from) + along * last));
}

std::string Metres(char axis, double hostUnits) {
    char text[32];
    std::snprintf(text, sizeof text, "%c %.6g m", axis, hostUnits / UnitsPerMetre());
    return text;
}

// Where lines of the grid lie, from the origin on.
std::vector<double> Outwards(double step, float lower, float upper) {
    std::vector<double> places;
    for (long long i = std::llround(double{lower} / step); i <= std::llround(double{upper} / step);
         ++i)
        places.push_back(static_cast<double>(i) * step);
    std::ranges::stable_sort(places, {}, [](double place) { return std::abs(place); });
    return places;
}

class Labels {
  public:
    Labels(TimeValue t, DrawWindow& window) : window_(window) {
        for (const ShownBox& shown : FramedBoxes(t))
            if (const auto box = OnScreen(window.Shown(), shown.box)) figure_.push_back(*box);
    }

    void Write(const Point3& from, const Point3& to, bool below, const std::string& metres) {
        const View& view = window_.Shown();
        const auto ends = EndsInPicture(view, from, to);
        if (!ends) return;
        const ClipPlace a = ToClip(view, ends->first);
        const ClipPlace b = ToClip(view, ends->second);
        if (!(a.w > 0) || !(b.w > 0)) return;
        const ScreenPlace p = OnScreen(view, a);
        const ScreenPlace q = OnScreen(view, b);
        const bool takesFirst = below ? p.y > q.y : p.x > q.x;
        const ScreenPlace& at = takesFirst ? p : q;
        const Half half(view);
        const bool leavesBelow = at.y > view.height - half.height - 1;
        if (!below && leavesBelow) return;
        if (std::ranges::any_of(figure_, [&](auto& box) { return box.Meets(at, half); })) return;
        window_.DrawWord(takesFirst ? ends->first : ends->second, metres, false);
    }

  private:
    DrawWindow& window_;
    std::vector<ScreenBox> figure_;
};

}  // namespace

// Of lines that run across, none that leaves the picture below has a label, where those of the
// others stand. A line runs away from the viewer along the axis that the view has most of, ahead or
// upwards.
void WriteMetres(const GroundGrid& grid, TimeValue t, DrawWindow& window) {
    const Point3& lower = grid.area.pmin;
    const Point3& upper = grid.area.pmax;
    const auto& clip = window.Shown().toClip;
    const auto runsAway = [&](std::size_t axis) {
        return std::abs(clip[axis][3]) + std::abs(clip[axis][1]);
    };
    const bool yRunsAway = runsAway(1) > runsAway(0);
    window.setColor(LINE_COLOR, kMetres.red, kMetres.green, kMetres.blue);
    Labels labels(t, window);
    for (const double at : Outwards(grid.step, lower.x, upper.x)) {
        const auto x = static_cast<float>(at);
        labels.Write({x, lower.y, 0}, {x, upper.y, 0}, yRunsAway, Metres('x', at));
    }
    for (const double at : Outwards(grid.step, lower.y, upper.y)) {
        const auto y = static_cast<float>(at);
        labels.Write({lower.x, y, 0}, {upper.x, y, 0}, !yRunsAway, Metres('z', at == 0 ? 0 : -at));
    }
}

}  // namespace headless
