#include "headless/viewport_module/words.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "headless/viewport_module/letters.h"
#include "host/graphics_window.h"

namespace headless {
namespace {

constexpr int kBesidePlace = 5;  // pixels from the place to the first letter
constexpr int kAdvance = kLetterWidth + 1;
constexpr Colour kRim{0.1F, 0.1F, 0.12F};

// In pixels, if it is in front of the viewer and in the picture.
std::optional<IPoint2> OnPicture(const Point3& place, const View& view) {
    const ClipPlace clip = ToClip(view, place);
    if (!(clip.w > 0) || std::abs(clip.x) > clip.w || std::abs(clip.y) > clip.w)
        return std::nullopt;
    return IPoint2{static_cast<int>((clip.x / clip.w + 1) / 2 * view.width),
                   static_cast<int>((1 - clip.y / clip.w) / 2 * view.height)};
}

std::uint8_t Byte(float channel) {
    return static_cast<std::uint8_t>(std::lround(channel * 255));
}

void Dot(Picture& picture, int x, int y, const Colour& colour) {
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) return;
    const std::size_t pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
        static_cast<std::size_t>(x);
    std::uint8_t* const rgb = &picture.rgb[pixel * 3];
    rgb[0] = Byte(colour.red);
    rgb[1] = Byte(colour.green);
    rgb[2] = Byte(colour.blue);
}

void DrawLetters(std::string_view text, const IPoint2& corner, const Colour& colour,
                 Picture& onto) {
    int left = corner.x;
    for (const char letter : text) {
        if (left >= onto.width) return;
        for (int row = 0; row < kLetterHeight; ++row)
            for (int column = 0; column < kLetterWidth; ++column)
                if (LetterHasInk(letter, column, row))
                    Dot(onto, left + column, corner.y + row, colour);
        left += kAdvance;
    }
}

void DrawRimmed(const DrawText& word, const IPoint2& corner, Picture& onto) {
    for (const int x : {-1, 0, 1})
        for (const int y : {-1, 0, 1})
            DrawLetters(word.text, {corner.x + x, corner.y + y}, kRim, onto);
    DrawLetters(word.text, corner, word.colour, onto);
}

// Pixels, the last ones not included.
struct Frame {
    int left, top, right, bottom;
};

Frame FrameOf(const DrawText& word, const IPoint2& corner, const Picture& onto) {
    const auto letters = std::min(word.text.size(), static_cast<std::size_t>(onto.width));
    return {corner.x - 1, corner.y - 1, corner.x + static_cast<int>(letters) * kAdvance,
            corner.y + kLetterHeight + 1};
}

bool Overlap(const Frame& a, const Frame& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

}  // namespace

void DrawWords(const DrawList& list, const View& view, Picture& onto) {
    std::vector<Frame> taken;
    for (const DrawText& word : list.texts) {
        const auto place = OnPicture(word.place, view);
        if (!place) continue;
        const IPoint2 corner{place->x + kBesidePlace, place->y - kLetterHeight / 2};
        const Frame frame = FrameOf(word, corner, onto);
        if (std::ranges::any_of(taken, [&](const Frame& other) { return Overlap(frame, other); }))
            continue;
        taken.push_back(frame);
        DrawRimmed(word, corner, onto);
    }
}

}  // namespace headless
