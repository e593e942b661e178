#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "headless/viewport.h"
#include "headless/viewport/own_camera.h"
#include "headless/viewport/shown_nodes.h"
#include "headless/viewport/view_camera.h"
#include "host/time.h"

namespace headless {
namespace {

// How long a camera that goes along takes to notice: swinging arms do not shake it.
constexpr double kCalmSeconds = 0.3;

using Boxes = std::vector<ShownBox>;
using Handles = std::set<std::uint32_t>;
using Times = std::vector<TimeValue>;

// The boxes of a long take have no room beside each other, so that it is gone through again for
// each question.
Handles Moving(const Times& times, const EachTime& each) {
    std::map<std::uint32_t, Box3> first;
    Handles moving;
    for (const TimeValue t : times) {
        for (const auto& [handle, box] : FramedBoxes(t)) {
            const Box3& was = first.emplace(handle, box).first->second;
            if (was.pmin != box.pmin || was.pmax != box.pmax) moving.insert(handle);
        }
        each();
    }
    return moving;
}

// A follower's picture is about what moves, if anything does.
void Keep(const Handles& moving, Boxes& boxes) {
    if (moving.empty()) return;
    std::erase_if(boxes, [&](const ShownBox& shown) { return !moving.contains(shown.handle); });
}

// While nothing is there, the middle stays where it was.
std::vector<Vector> Middles(const Times& times, const Handles& moving, const EachTime& each) {
    std::vector<Vector> middles;
    Vector middle;
    for (const TimeValue t : times) {
        Boxes boxes = FramedBoxes(t);
        Keep(moving, boxes);
        Box3 all;
        for (const ShownBox& shown : boxes)
            Grow(all, shown.box);
        if (!all.IsEmpty()) middle = (Vector(all.pmin) + Vector(all.pmax)) * 0.5;
        middles.push_back(middle);
        each();
    }
    return middles;
}

// Each the mean of those around it, which count the less the longer they are away.
std::vector<Vector> Calmed(const std::vector<Vector>& middles, const Times& times) {
    const double calm = kCalmSeconds * GetTicksPerFrame() * GetFrameRate();
    std::vector<Vector> calmed;
    std::size_t first = 0;
    for (std::size_t i = 0; i < times.size(); ++i) {
        while (double{1} * times[i] - times[first] > 3 * calm)
            ++first;
        Vector sum;
        double weights = 0;
        for (std::size_t j = first; j < times.size(); ++j) {
            const double away = (double{1} * times[j] - times[i]) / calm;
            if (away > 3) break;
            const double weight = std::exp(-away * away);
            sum = sum + middles[j] * weight;
            weights += weight;
        }
        calmed.push_back(sum * (1 / weights));
    }
    return calmed;
}

void AddCorners(const Boxes& boxes, const Vector& seenFrom, std::vector<Vector>& points) {
    for (const ShownBox& shown : boxes)
        for (const Vector& corner : Corners(shown.box))
            points.push_back(corner - seenFrom);
}

}  // namespace

CameraPath PathThrough(const ViewportSettings& settings, std::vector<TimeValue> times, bool follows,
                       const EachTime& each) {
    if (times.empty() || !HasPictureSize(settings)) return {};
    std::ranges::sort(times);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    CameraPath path{.times = std::move(times), .places = {}, .framed = {}};
    Handles moving;
    std::vector<Vector> middles{{}};  // of what each picture is about; a camera that stands has one
    if (follows) {
        moving = Moving(path.times, each);
        middles = Calmed(Middles(path.times, moving, each), path.times);
    }
    const Pose turned = PoseFrom(settings.side);
    const CameraOpening opening = OwnOpening(settings);
    std::vector<Vector> outermost;
    for (std::size_t i = 0; i < path.times.size(); ++i) {
        Boxes boxes = FramedBoxes(path.times[i]);
        for (const ShownBox& shown : boxes)
            Grow(path.framed, shown.box);
        Keep(moving, boxes);
        AddCorners(boxes, middles[follows ? i : 0], outermost);
        outermost = Outermost(turned, opening, outermost);
        each();
    }
    const Vector behind = PlaceToSee(turned, opening, std::move(outermost));
    for (const Vector& middle : middles)
        path.places.push_back(Narrow(middle + behind));
    return path;
}

}  // namespace headless
