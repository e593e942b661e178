#include "command/render.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "command/chosen_takes.h"
#include "command/core_space.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "host/time.h"

namespace headless {
namespace {

constexpr int kLargestSheet = 16384;  // pixels each way

std::string WithFrame(std::string file, int frame) {
    const std::size_t place = file.find(kFramePlace);
    if (place == std::string::npos) return file;
    char number[16];
    std::snprintf(number, sizeof number, kFramePlace, frame);
    return file.replace(place, sizeof kFramePlace - 1, number);
}

struct Moment {
    int frame;
    TimeValue t;
};

std::vector<Moment> OfTake(const FrameRange& frames, const interchange::Take& take) {
    if (frames.first < 0 || static_cast<std::size_t>(frames.last) >= take.frameCount)
        throw Failure("--frames: the take " + Quoted(take.name) + " has the frames 0 to " +
                      std::to_string(take.frameCount - 1));
    std::vector<Moment> moments;
    for (std::size_t i = 0; i < frames.Count(); ++i) {
        const int frame = frames.At(i);
        moments.push_back({frame, AtSeconds(take.Seconds(static_cast<std::size_t>(frame)))});
    }
    return moments;
}

std::vector<Moment> OfScene(const FrameRange& frames) {
    std::vector<Moment> moments;
    for (std::size_t i = 0; i < frames.Count(); ++i) {
        const int frame = frames.At(i);
        moments.push_back({frame, NearestTime(double{1} * frame * GetTicksPerFrame())});
    }
    return moments;
}

std::vector<Moment> MomentsOf(const RenderOptions& options, CoreStage& stage) {
    const FrameRange& frames = options.frames.front();
    if (options.take.empty()) return OfScene(frames);
    const auto takes =
        TakesOfStage(stage, options.scene, {.names = {options.take}, .framesPerSecond = 0});
    return OfTake(frames, takes.front()->take);
}

// How the pictures of all moments are looked at.
ViewportSettings ViewOf(const RenderOptions& options, const std::vector<Moment>& moments) {
    ViewportSettings view = options.view;
    if (options.motion == CameraMotion::kEach) return view;
    std::vector<TimeValue> times;
    for (const Moment& moment : moments)
        times.push_back(moment.t);
    view.path = PathThrough(view, std::move(times), options.motion == CameraMotion::kFollows);
    return view;
}

std::string SecondsAt(TimeValue t) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", double{1} * t / GetTicksPerFrame() / GetFrameRate());
    return text;
}

void AddMissing(const std::string& ahead, const std::vector<std::string>& names,
                std::vector<std::string>& complaints) {
    std::string all;
    for (const std::string& name : names)
        all += (all.empty() ? "" : ", ") + InTable(name);
    if (!all.empty()) complaints.push_back(ahead + all);
}

// Names that were asked for and are not in the picture; of those that nobody asked for, which have
// no room.
void TellMissingNames(const RenderOptions& options, const Picture& picture, TimeValue t,
                      std::vector<std::string>& complaints) {
    const std::string at = "at " + SecondsAt(t) + ' ';
    AddMissing(at + "there is no room for the names of: ", picture.namesWithoutRoom, complaints);
    std::vector<std::string> outside = picture.namesOutside;
    std::erase_if(outside, [&](const std::string& name) {
        return std::ranges::find(options.view.namesAsked, name) == options.view.namesAsked.end();
    });
    AddMissing(at + "these are outside of the picture: ", outside, complaints);
}

Picture PictureAt(const RenderOptions& options, const ViewportSettings& view, TimeValue t,
                  RenderResult& result) {
    Picture picture = PictureAt(view, t, options.scene + ": no picture: ");
    TellMissingNames(options, picture, t, result.complaints);
    return picture;
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

// On a sheet each picture says which moment it is, as a file does by its name.
void RenderSheet(const RenderOptions& options, const std::vector<Moment>& moments,
                 RenderResult& result) {
    ViewportSettings view = ViewOf(options, moments);
    LongWork drawing("Drawing", moments.size(), "picture");
    std::vector<Picture> pictures;
    for (const auto& [frame, t] : moments) {
        view.caption = "frame " + std::to_string(frame) + ", " + SecondsAt(t);
        pictures.push_back(PictureAt(options, view, t, result));
        drawing.Advance();
    }
    Write(SideBySide(pictures, options.sheetColumns), options.file, result);
}

void RenderSequence(const RenderOptions& options, const std::vector<Moment>& moments,
                    RenderResult& result) {
    const ViewportSettings view = ViewOf(options, moments);
    LongWork drawing("Drawing", moments.size(), "picture");
    for (const auto& [frame, t] : moments) {
        const std::string file = WithFrame(options.file, frame);
        Write(PictureAt(options, view, t, result), file, result);
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

bool EndsAsPicture(const std::string& file) {
    const std::string_view ending = kPictureEnding;
    return file.size() >= ending.size() &&
           std::ranges::equal(file.substr(file.size() - ending.size()), ending, [](char a, char b) {
               return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b;
           });
}

RenderResult Render(const RenderOptions& options) {
    if (options.sheetColumns > 0 && !options.frames.empty())
        CheckSheet(options, options.frames.front().Count());
    CoreStage stage(options.guests);
    stage.Open(options.scene);
    RenderResult result;
    if (options.frames.empty()) {
        const TimeValue t = AtSeconds(options.seconds);
        Write(PictureAt(options, options.view, t, result), options.file, result);
    } else {
        const std::vector<Moment> moments = MomentsOf(options, stage);
        (options.sheetColumns > 0 ? RenderSheet : RenderSequence)(options, moments, result);
    }
    for (const std::string& complaint : stage.TakeNewsInOne().complaints)
        result.complaints.push_back(complaint);
    return result;
}

}  // namespace headless
