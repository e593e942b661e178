#include "command/render.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "command/core_space.h"
#include "command/exit_status.h"
#include "host/time.h"

namespace headless {
namespace {

// At how many times a take is looked at to find out what its pictures must show.
constexpr std::size_t kFramedTimes = 24;

constexpr int kLargestSheet = 16384;  // pixels each way

TimeValue AtFrame(int frame) {
    return NearestTime(double{1} * frame * GetTicksPerFrame());
}

std::string WithFrame(std::string file, int frame) {
    const std::size_t place = file.find(kFramePlace);
    if (place == std::string::npos) return file;
    char number[16];
    std::snprintf(number, sizeof number, kFramePlace, frame);
    return file.replace(place, sizeof kFramePlace - 1, number);
}

// One camera for the whole take, which therefore stands still.
std::vector<TimeValue> FramedTimes(const FrameRange& frames) {
    const std::size_t count = std::min(frames.Count(), kFramedTimes);
    if (count < 2) return {};
    std::vector<TimeValue> times;
    for (std::size_t i = 0; i < count; ++i)
        times.push_back(AtFrame(frames.At(i * (frames.Count() - 1) / (count - 1))));
    return times;
}

Picture PictureAt(const RenderOptions& options, const ViewportSettings& view, TimeValue t) {
    return PictureAt(view, t, options.scene + ": no picture: ");
}

void Write(const Picture& picture, const std::string& file, RenderResult& result) {
    SavePicture(picture, file);
    result.files.push_back(file);
    result.width = picture.width;
    result.height = picture.height;
}

// Throws before anything is drawn.
void CheckSheet(const RenderOptions& options, std::size_t count) {
    const auto columns = std::min(static_cast<std::size_t>(options.sheetColumns), count);
    const auto rows = (count + columns - 1) / columns;
    const auto across = columns * static_cast<std::size_t>(options.view.width);
    const auto down = rows * static_cast<std::size_t>(options.view.height);
    if (std::max(across, down) > kLargestSheet)
        Refuse("--sheet: " + std::to_string(count) + " pictures make a sheet of " +
               std::to_string(across) + "x" + std::to_string(down) +
               " pixels, of which it can have 16,384 each way");
}

// Each moment fills its own picture.
void RenderSheet(const RenderOptions& options, const FrameRange& frames, RenderResult& result) {
    CheckSheet(options, frames.Count());
    LongWork drawing("Drawing", frames.Count(), "picture");
    std::vector<Picture> pictures;
    for (std::size_t i = 0; i < frames.Count(); ++i) {
        pictures.push_back(PictureAt(options, options.view, AtFrame(frames.At(i))));
        drawing.Advance();
    }
    Write(SideBySide(pictures, options.sheetColumns), options.file, result);
}

void RenderSequence(const RenderOptions& options, const FrameRange& frames, RenderResult& result) {
    ViewportSettings view = options.view;
    view.framedTimes = FramedTimes(frames);
    LongWork drawing("Drawing", frames.Count(), "picture");
    for (std::size_t i = 0; i < frames.Count(); ++i) {
        const int frame = frames.At(i);
        const std::string file = WithFrame(options.file, frame);
        Write(PictureAt(options, view, AtFrame(frame)), file, result);
        drawing.Advance();
    }
}

}  // namespace

Picture PictureAt(const ViewportSettings& view, TimeValue t, const std::string& ahead) {
    Picture picture;
    const std::string error = DrawPicture(view, t, picture);
    if (!error.empty()) throw Failure(ahead + error);
    return picture;
}

void SavePicture(const Picture& picture, const std::string& file) {
    ExpectFile(file);
    const std::string error = WritePng(picture, file);
    if (!error.empty()) throw Failure(error);
    NoteSaved(file);
}

std::size_t FrameRange::Count() const {
    return static_cast<std::size_t>((std::int64_t{last} - first) / step + 1);
}

int FrameRange::At(std::size_t index) const {
    return static_cast<int>(first + static_cast<std::int64_t>(index) * step);
}

std::size_t FramePlaces(const std::string& file) {
    std::size_t places = 0;
    for (std::size_t at = file.find(kFramePlace); at != std::string::npos;
         at = file.find(kFramePlace, at + 1))
        ++places;
    return places;
}

RenderResult Render(const RenderOptions& options) {
    CoreStage stage(options.guests);
    stage.Open(options.scene);
    RenderResult result;
    if (options.frames.empty())
        Write(PictureAt(options, options.view, AtSeconds(options.seconds)), options.file, result);
    else if (options.sheetColumns > 0)
        RenderSheet(options, options.frames.front(), result);
    else
        RenderSequence(options, options.frames.front(), result);
    result.complaints = stage.TakeNewsInOne().complaints;
    return result;
}

}  // namespace headless
