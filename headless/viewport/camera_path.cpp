#include <algorithm>
#include <cmath>
#include <iterator>
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

std::set<std::uint32_t> Moving(const std::vector<Boxes>& moments) {
    std::map<std::uint32_t, Box3> first;
    std::set<std::uint32_t> moving;
    for (const Boxes& boxes : moments)
        for (const auto& [handle, box] : boxes) {
            const Box3& was = first.emplace(handle, box).first->second;
            if (was.pmin != box.pmin || was.pmax != box.pmax) moving.insert(handle);
        }
    return moving;
}

// A follower's picture is about what moves, if anything does.
void KeepMoving(std::vector<Boxes>& moments) {
    const std::set<std::uint32_t> moving = Moving(moments);
    if (moving.empty()) return;
    for (Boxes& boxes : moments)
        std::erase_if(boxes, [&](const ShownBox& shown) { return !moving.contains(shown.handle); });
}

Vector MiddleOf(const Boxes& boxes) {
    Box3 all;
    for (const ShownBox& shown : boxes)
        Grow(all, shown.box);
    if (all.IsEmpty()) return {};
    return (Vector(all.pmin) + Vector(all.pmax)) * 0.5;
}

// Each the mean of those around it, which count the less the longer they are away.
std::vector<Vector> Calmed(const std::vector<Vector>& middles,
                           const std::vector<TimeValue>& times) {
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

std::vector<Vector> CornersSeenFrom(const Vector& middle, const Boxes& boxes) {
    std::vector<Vector> points;
    for (const ShownBox& shown : boxes)
        for (const Vector& corner : Corners(shown.box))
            points.push_back(corner - middle);
    return points;
}

}  // namespace

CameraPath PathThrough(const ViewportSettings& settings, std::vector<TimeValue> times,
                       bool follows) {
    if (times.empty() || !HasPictureSize(settings)) return {};
    std::ranges::sort(times);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    CameraPath path{.times = std::move(times), .places = {}, .framed = {}};
    std::vector<Boxes> moments;
    for (const TimeValue t : path.times)
        for (const ShownBox& shown : moments.emplace_back(FramedBoxes(t)))
            Grow(path.framed, shown.box);

    std::vector<Vector> middles{{}};  // of what each picture is about; a camera that stands has one
    if (follows) {
        KeepMoving(moments);
        middles.clear();
        std::ranges::transform(moments, std::back_inserter(middles), MiddleOf);
        middles = Calmed(middles, path.times);
    }
    const Pose turned = PoseFrom(settings.side);
    const CameraOpening opening = OwnOpening(settings);
    std::vector<Vector> outermost;
    for (std::size_t i = 0; i < moments.size(); ++i)
        std::ranges::copy(
            Outermost(turned, opening, CornersSeenFrom(middles[follows ? i : 0], moments[i])),
            std::back_inserter(outermost));
    const Vector behind = PlaceToSee(turned, opening, std::move(outermost));
    for (const Vector& middle : middles)
        path.places.push_back(Narrow(middle + behind));
    return path;
}

}  // namespace headless
