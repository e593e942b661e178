#include "headless/viewport_module/letters.h"

#include <stb/stb_easy_font.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

namespace headless {
namespace {

constexpr Colour kRim{0.1F, 0.1F, 0.12F};

// A letter as the font gives it: a few rectangles of whole pixels, each by its corners.
struct Corner {
    float x, y, z;
    std::array<std::uint8_t, 4> colour;
};
using Stroke = std::array<Corner, 4>;
constexpr std::size_t kMostStrokes = 32;

// As the text of one letter.
std::array<char, 2> Shown(char letter) {
    return {letter < ' ' || letter > '~' ? '?' : letter, '\0'};
}

void DrawLetters(std::string_view text, const IPoint2& corner, int size, const Colour& colour,
                 Picture& onto) {
    int left = corner.x;
    for (const char letter : text) {
        if (left >= onto.width) return;
        std::array<Stroke, kMostStrokes> strokes;
        const int count = stb_easy_font_print(0, 0, Shown(letter).data(), nullptr, strokes.data(),
                                              static_cast<int>(sizeof strokes));
        const auto at = [&](float place) { return static_cast<int>(place) * size; };
        for (const Stroke& stroke : std::span(strokes).first(static_cast<std::size_t>(count)))
            for (int y = at(stroke[0].y); y < at(stroke[2].y); ++y)
                for (int x = at(stroke[0].x); x < at(stroke[2].x); ++x)
                    Dot(onto, left + x, corner.y + y, colour);
        left += stb_easy_font_width(Shown(letter).data()) * size;
    }
}

}  // namespace

int WidthOf(std::string_view text) {
    int width = 0;
    for (const char letter : text)
        width += stb_easy_font_width(Shown(letter).data());
    return width;
}

void Dot(Picture& picture, int x, int y, const Colour& colour, float share) {
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) return;
    const std::size_t pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
        static_cast<std::size_t>(x);
    std::uint8_t* const rgb = &picture.rgb[pixel * 3];
    const std::array channels{colour.red, colour.green, colour.blue};
    for (std::size_t i = 0; i < channels.size(); ++i)
        rgb[i] = static_cast<std::uint8_t>(
            std::lround(channels[i] * 255 * share + static_cast<float>(rgb[i]) * (1 - share)));
}

void DrawRimmed(std::string_view text, const IPoint2& corner, int size, const Colour& colour,
                Picture& onto) {
    for (const int x : {-1, 0, 1})
        for (const int y : {-1, 0, 1})
            DrawLetters(text, {corner.x + x, corner.y + y}, size, kRim, onto);
    DrawLetters(text, corner, size, colour, onto);
}

}  // namespace headless
