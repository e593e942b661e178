#include "headless/viewport_module/words.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "headless/viewport/pixel_module.h"
#include "headless/viewport_module/letters.h"
#include "headless/viewport_module/word_layout.h"

namespace headless {
namespace {

constexpr Colour kCaption{0.85F, 0.86F, 0.84F};
constexpr int kCaptionCorner = 6;  // pixels from the upper left
constexpr int kRimWidth = 1;
constexpr float kLineShare = 0.55F;  // how much of its colour shows
constexpr std::size_t kMostLetters = 4096;

struct Word {
    const DrawText* text;
    IPoint2 place;
};

struct Standing {
    Word word;
    Frame frame;
    int size;
};

// In pixels, if it is in front of the viewer and in the picture.
std::optional<IPoint2> OnPicture(const Point3& place, const View& view) {
    const ClipPlace clip = ToClip(view, place);
    if (!(clip.w > 0) || std::abs(clip.x) > clip.w || std::abs(clip.y) > clip.w)
        return std::nullopt;
    const ScreenPlace at = OnScreen(view, clip);
    return IPoint2{std::min(static_cast<int>(at.x), view.width - 1),
                   std::min(static_cast<int>(at.y), view.height - 1)};
}

// A word wider than any picture has no room, however long it is.
int FrameWidth(std::string_view text, int size) {
    return WidthOf(text.substr(0, kMostLetters)) * size + 2 * kRimWidth;
}

int FrameHeight(int size) {
    return kLetterHeight * size + 2 * kRimWidth;
}

struct Layout {
    WordLayout room;
    std::vector<Standing> standing{};
    std::vector<std::string> withoutRoom{};
};

Layout LayOutNames(const std::vector<Word>& names, int size, WordLayout room) {
    Layout layout{std::move(room)};
    for (const Word& name : names) {
        const auto frame =
            layout.room.TakeNear(name.place, FrameWidth(name.text->text, size), FrameHeight(size));
        if (frame)
            layout.standing.push_back({name, *frame, size});
        else
            layout.withoutRoom.push_back(name.text->text);
    }
    return layout;
}

void AddIfFree(const Word& word, int size, Layout& layout) {
    const int width = FrameWidth(word.text->text, size);
    const int height = FrameHeight(size);
    const int left = word.place.x - width / 2;
    const int top = word.place.y - height / 2;
    const Frame frame{left, top, left + width, top + height};
    if (layout.room.Take(frame)) layout.standing.push_back({word, frame, size});
}

void DrawLine(const Standing& standing, Picture& onto) {
    const IPoint2& place = standing.word.place;
    const LeadingLine line = LineTo(standing.frame, place);
    if (line.count == 0) return;
    for (int i = 0; i < line.count; ++i)
        Dot(onto, line.Pixel(i).x, line.Pixel(i).y, standing.word.text->colour, kLineShare);
    for (const int x : {-1, 0, 1})
        for (const int y : {-1, 0, 1})
            Dot(onto, place.x + x, place.y + y, standing.word.text->colour);
}

void Write(std::string_view text, const Frame& frame, int size, const Colour& colour,
           Picture& onto) {
    DrawRimmed(text, {frame.left + kRimWidth, frame.top + kRimWidth}, size, colour, onto);
    onto.words.push_back({std::string(text), frame.left, frame.top, frame.right, frame.bottom});
}

// What of the caption goes into the picture.
void WriteCaption(const std::string& caption, int size, WordLayout& room, Picture& onto) {
    if (caption.empty()) return;
    const int corner = kCaptionCorner * size;
    const Frame frame{corner, corner, std::min(corner + FrameWidth(caption, size), onto.width),
                      std::min(corner + FrameHeight(size), onto.height)};
    room.Take(frame);
    Write(caption, frame, size, kCaption, onto);
}

}  // namespace

void DrawWords(const DrawList& list, const View& view, Picture& onto) {
    const int size = LetterSize(onto.width, onto.height);
    WordLayout room(onto.width, onto.height);
    WriteCaption(list.caption, size, room, onto);
    std::vector<Word> names;
    std::vector<Word> others;
    for (const DrawText& text : list.texts) {
        if (const auto place = OnPicture(text.place, view))
            (text.isName ? names : others).push_back({&text, *place});
        else if (text.isName)
            onto.namesOutside.push_back(text.text);
    }
    for (const Word& name : names)
        room.Spare(name.place);
    Layout layout = LayOutNames(names, size, room);
    for (int smaller = size - 1; !layout.withoutRoom.empty() && smaller > 0; --smaller)
        layout = LayOutNames(names, smaller, room);
    for (const Word& word : others)
        AddIfFree(word, size, layout);
    for (const Standing& standing : layout.standing)
        if (standing.word.text->isName) DrawLine(standing, onto);
    for (const Standing& standing : layout.standing)
        Write(standing.word.text->text, standing.frame, standing.size, standing.word.text->colour,
              onto);
    onto.namesWithoutRoom = std::move(layout.withoutRoom);
}

}  // namespace headless
