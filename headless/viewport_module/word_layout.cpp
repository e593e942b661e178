#include "headless/viewport_module/word_layout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace headless {
namespace {

constexpr int kSquare = 4;       // pixels
constexpr int kBesidePlace = 5;  // pixels from the place to the first letter
constexpr int kFarthest = 600;   // pixels, that a word is moved
constexpr int kAside = 8;        // pixels from one place to try to the next
constexpr int kNear = 10;        // pixels, within which a word needs no line to its place

// From the edge of the word that is next to its place.
struct Shift {
    int x;
    int y;
    bool toTheLeft;
};

// From the nearest on, on the right ahead of the left.
std::vector<Shift> Shifts() {
    std::vector<Shift> shifts;
    for (int y = -kFarthest; y <= kFarthest; y += kSquare)
        for (int x = 0; x <= kFarthest; x += kAside)
            for (const bool toTheLeft : {false, true})
                shifts.push_back({x, y, toTheLeft});
    std::ranges::stable_sort(shifts, {}, [](const Shift& shift) {
        return shift.x * shift.x + shift.y * shift.y + (shift.toTheLeft ? kAside * kAside : 0);
    });
    return shifts;
}

Frame Shifted(const IPoint2& place, const Shift& shift, int width, int height) {
    const int aside = kBesidePlace + shift.x;
    const int left = shift.toTheLeft ? place.x - aside - width : place.x + aside;
    const int top = place.y + shift.y - height / 2;
    return {left, top, left + width, top + height};
}

}  // namespace

WordLayout::WordLayout(int width, int height)
    : width_(width),
      height_(height),
      across_(static_cast<std::size_t>(width / kSquare + 1)),
      taken_(across_ * static_cast<std::size_t>(height / kSquare + 1)) {}

bool WordLayout::IsFree(const Frame& frame) const {
    if (frame.left < 0 || frame.top < 0 || frame.right > width_ || frame.bottom > height_)
        return false;
    for (int y = frame.top / kSquare; y <= (frame.bottom - 1) / kSquare; ++y)
        for (int x = frame.left / kSquare; x <= (frame.right - 1) / kSquare; ++x)
            if (taken_[static_cast<std::size_t>(y) * across_ + static_cast<std::size_t>(x)])
                return false;
    return true;
}

void WordLayout::Mark(const Frame& frame) {
    for (int y = frame.top / kSquare; y <= (frame.bottom - 1) / kSquare; ++y)
        for (int x = frame.left / kSquare; x <= (frame.right - 1) / kSquare; ++x)
            taken_[static_cast<std::size_t>(y) * across_ + static_cast<std::size_t>(x)] = true;
}

bool WordLayout::IsLineFree(const IPoint2& from, const IPoint2& to) const {
    if (std::max(std::abs(to.x - from.x), std::abs(to.y - from.y)) <= kNear) return true;
    return std::ranges::all_of(PixelsOf(from, to), [&](const IPoint2& at) {
        return IsFree({at.x, at.y, at.x + 1, at.y + 1});
    });
}

bool WordLayout::Take(const Frame& frame) {
    if (!IsFree(frame)) return false;
    Mark(frame);
    return true;
}

// Where a word found no room, none that is as wide finds it.
std::optional<Frame> WordLayout::TakeNear(const IPoint2& place, int width, int height) {
    static const std::vector<Shift> shifts = Shifts();
    if (width >= narrowestWithoutRoom_) return std::nullopt;
    for (const bool needsFreeLine : {true, false})
        for (const Shift& shift : shifts) {
            const Frame frame = Shifted(place, shift, width, height);
            if (!IsFree(frame)) continue;
            const IPoint2 end = NearestIn(frame, place);
            if (needsFreeLine && !IsLineFree(place, end)) continue;
            if (needsFreeLine)
                for (const IPoint2& at : PixelsOf(place, end))
                    Mark({at.x, at.y, at.x + 1, at.y + 1});
            Mark(frame);
            return frame;
        }
    narrowestWithoutRoom_ = width;
    return std::nullopt;
}

IPoint2 NearestIn(const Frame& frame, const IPoint2& place) {
    return {std::clamp(place.x, frame.left, frame.right - 1),
            std::clamp(place.y, frame.top, frame.bottom - 1)};
}

std::vector<IPoint2> PixelsOf(const IPoint2& from, const IPoint2& to) {
    const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
    std::vector<IPoint2> pixels;
    for (int i = 0; i <= steps; ++i) {
        const double share = static_cast<double>(i) / steps;
        pixels.push_back({static_cast<int>(std::lround(from.x + share * (to.x - from.x))),
                          static_cast<int>(std::lround(from.y + share * (to.y - from.y)))});
    }
    return pixels;
}

}  // namespace headless
