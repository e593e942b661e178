#include "headless/viewport_module/word_layout.h"

#include <algorithm>
#include <cmath>

namespace headless {
namespace {

constexpr int kSquare = 4;       // pixels
constexpr int kBesidePlace = 5;  // pixels from the place to the first letter
constexpr int kFarthest = 600;   // pixels, that a word is moved
constexpr int kAside = 8;        // pixels from one place to try to the next
constexpr double kDetour = 60;   // pixels, that it is moved farther to stand tidily
constexpr double kNear = 10;     // pixels, within which a word needs no line to its place

// From the edge of the word that is next to its place.
struct Shift {
    int x;
    int y;
    bool toTheLeft;
    double length = std::hypot(x, y);
};

// From the nearest on, on the right ahead of the left.
std::vector<Shift> Shifts() {
    std::vector<Shift> shifts;
    for (int y = -kFarthest; y <= kFarthest; y += kSquare)
        for (int x = 0; x <= kFarthest; x += kAside)
            for (const bool toTheLeft : {false, true})
                shifts.push_back({x, y, toTheLeft});
    std::ranges::stable_sort(shifts, {}, [](const Shift& shift) {
        return shift.toTheLeft ? std::hypot(shift.length, kAside) : shift.length;
    });
    return shifts;
}

Frame Shifted(const IPoint2& place, const Shift& shift, int width, int height) {
    const int aside = kBesidePlace + shift.x;
    const int left = shift.toTheLeft ? place.x - aside - width : place.x + aside;
    const int top = place.y + shift.y - height / 2;
    return {left, top, left + width, top + height};
}

Frame Single(const IPoint2& at) {
    return {at.x, at.y, at.x + 1, at.y + 1};
}

}  // namespace

WordLayout::WordLayout(int width, int height)
    : width_(width),
      height_(height),
      across_(static_cast<std::size_t>(width / kSquare + 1)),
      taken_(across_ * static_cast<std::size_t>(height / kSquare + 1)),
      spared_(taken_) {}

bool WordLayout::IsFree(const Frame& frame, const Squares& taken) const {
    if (frame.left < 0 || frame.top < 0 || frame.right > width_ || frame.bottom > height_)
        return false;
    for (int y = frame.top / kSquare; y <= (frame.bottom - 1) / kSquare; ++y)
        for (int x = frame.left / kSquare; x <= (frame.right - 1) / kSquare; ++x)
            if (taken[static_cast<std::size_t>(y) * across_ + static_cast<std::size_t>(x)])
                return false;
    return true;
}

void WordLayout::Mark(const Frame& frame, Squares& taken) {
    for (int y = frame.top / kSquare; y <= (frame.bottom - 1) / kSquare; ++y)
        for (int x = frame.left / kSquare; x <= (frame.right - 1) / kSquare; ++x)
            taken[static_cast<std::size_t>(y) * across_ + static_cast<std::size_t>(x)] = true;
}

// Lines may begin at one place.
bool WordLayout::IsTidy(const Frame& frame, const IPoint2& place) const {
    if (!IsFree(frame, spared_)) return false;
    const LeadingLine line = LineTo(frame, place);
    for (int i = 2 * kSquare; i < line.count; ++i)
        if (!IsFree(Single(line.Pixel(i)), taken_)) return false;
    return true;
}

bool WordLayout::Take(const Frame& frame) {
    if (!IsFree(frame, taken_)) return false;
    Mark(frame, taken_);
    return true;
}

// So much around it that a word beside it has none of its squares.
void WordLayout::Spare(const IPoint2& place) {
    for (const int x : {place.x - 1, place.x + 1})
        for (const int y : {place.y - 1, place.y + 1})
            if (const Frame frame = Single({x, y}); IsFree(frame, taken_)) Mark(frame, spared_);
}

// Where a word found no room, none that is as wide finds it.
std::optional<Frame> WordLayout::TakeNear(const IPoint2& place, int width, int height) {
    static const std::vector<Shift> shifts = Shifts();
    if (width >= narrowestWithoutRoom_) return std::nullopt;
    std::optional<Frame> found;
    double farthest = 2 * kFarthest;
    for (const Shift& shift : shifts) {
        if (shift.length > farthest) break;
        const Frame frame = Shifted(place, shift, width, height);
        if (!IsFree(frame, taken_)) continue;
        const bool isTidy = IsTidy(frame, place);
        if (isTidy || !found) found = frame;
        if (isTidy) break;
        farthest = std::min(farthest, shift.length + kDetour);
    }
    if (!found) narrowestWithoutRoom_ = width;
    if (found) Mark(*found, taken_);
    const LeadingLine line = found ? LineTo(*found, place) : LeadingLine();
    for (int i = 0; i < line.count; ++i)
        Mark(Single(line.Pixel(i)), taken_);
    return found;
}

IPoint2 LeadingLine::Pixel(int index) const {
    const double share = static_cast<double>(index) / (count - 1);
    return {from.x + static_cast<int>(std::lround(share * way.x)),
            from.y + static_cast<int>(std::lround(share * way.y))};
}

LeadingLine LineTo(const Frame& frame, const IPoint2& place) {
    const IPoint2 way{std::clamp(place.x, frame.left, frame.right - 1) - place.x,
                      std::clamp(place.y, frame.top, frame.bottom - 1) - place.y};
    if (std::hypot(way.x, way.y) <= kNear) return {};
    return {place, way, std::max(std::abs(way.x), std::abs(way.y)) + 1};
}

}  // namespace headless
