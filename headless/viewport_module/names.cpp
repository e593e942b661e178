#include "headless/viewport_module/names.h"

#include <stb/stb_easy_font.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "host/graphics_window.h"

namespace headless {
namespace {

constexpr int kBesidePlace = 5;   // pixels from the place to the first letter
constexpr int kLetterHeight = 9;  // from the top of a capital to below the line

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

// A letter as the font gives it: a few rectangles of whole pixels, each by its corners.
struct Corner {
    float x, y, z;
    std::array<std::uint8_t, 4> colour;
};
using Stroke = std::array<Corner, 4>;
constexpr std::size_t kMostStrokes = 32;

// As the text of one letter. All bytes but the printable ones of ASCII look alike.
std::array<char, 2> Shown(char letter) {
    return {letter < ' ' || letter > '~' ? '?' : letter, '\0'};
}

int WidthOf(std::string_view text) {
    int width = 0;
    for (const char letter : text)
        width += stb_easy_font_width(Shown(letter).data());
    return width;
}

void DrawLetters(std::string_view text, const IPoint2& corner, const Colour& colour,
                 Picture& onto) {
    int left = corner.x;
    for (const char letter : text) {
        if (left >= onto.width) return;
        std::array<Stroke, kMostStrokes> strokes;
        const int count = stb_easy_font_print(0, 0, Shown(letter).data(), nullptr, strokes.data(),
                                              static_cast<int>(sizeof strokes));
        for (const Stroke& stroke : std::span(strokes).first(static_cast<std::size_t>(count)))
            for (int y = static_cast<int>(stroke[0].y); y < static_cast<int>(stroke[2].y); ++y)
                for (int x = static_cast<int>(stroke[0].x); x < static_cast<int>(stroke[2].x); ++x)
                    Dot(onto, left + x, corner.y + y, colour);
        left += stb_easy_font_width(Shown(letter).data());
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
    const auto letters =
        std::string_view(word.text).substr(0, static_cast<std::size_t>(onto.width));
    return {corner.x - 1, corner.y - 1, corner.x + WidthOf(letters), corner.y + kLetterHeight + 1};
}

bool Overlap(const Frame& a, const Frame& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

}  // namespace

void DrawNames(const DrawList& list, const View& view, Picture& onto) {
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
