#include "command/render.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

#include "command/chosen_takes.h"
#include "command/core_space.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "headless/scene_view.h"
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

std::string NoPictureOf(const RenderOptions& options) {
    return options.scene + ": no picture: ";
}

// The library that draws says less of a name that is not there.
void CheckNames(const RenderOptions& options) {
    std::vector<std::string> names = options.view.namesAsked;
    if (!options.view.camera.empty()) names.push_back(options.view.camera);
    for (const std::string& name : names)
        if (!FindNode(name)) throw Failure(NoPictureOf(options) + NoNode(name));
}

std::vector<Moment> OfTake(const FrameRange& frames, const interchange::Take& take) {
    const auto last = take.firstNumber + static_cast<std::int64_t>(take.frameCount) - 1;
    if (frames.first < take.firstNumber || frames.last > last)
        throw Failure("--frames: the take " + Quoted(take.name) + " has the frames " +
                      std::to_string(take.firstNumber) + " to " + std::to_string(last));
    std::vector<Moment> moments;
    for (std::size_t i = 0; i < frames.Count(); ++i) {
        const int frame = frames.At(i);
        const auto inTake = static_cast<std::size_t>(frame - take.firstNumber);
        moments.push_back({frame, AtSeconds(take.Seconds(inTake))});
    }
    return moments;
}

std::vector<Moment> OfScene(const FrameRange& frames) {
    const int farthest = std::numeric_limits<TimeValue>::max() / GetTicksPerFrame();
    if (frames.first < -farthest || frames.last > farthest)
        throw Failure("--frames: the scene's time has the frames -" + std::to_string(farthest) +
                      " to " + std::to_string(farthest));
    std::vector<Moment> moments;
    for (std::size_t i = 0; i < frames.Count(); ++i)
        moments.push_back({frames.At(i), frames.At(i) * GetTicksPerFrame()});
    return moments;
}

std::vector<Moment> MomentsOf(const RenderOptions& options, CoreStage& stage) {
    if (options.frames.empty()) return {{0, CheckedTime(options.seconds)}};
    const FrameRange& frames = options.frames.front();
    if (options.take.empty()) return OfScene(frames);
    const auto takes = TakesOfStage(stage, options.scene, {.names = {options.take}});
    return OfTake(frames, takes.front()->take);
}

// How the pictures of all moments are looked at.
ViewportSettings ViewOf(const RenderOptions& options, const std::vector<Moment>& moments) {
    ViewportSettings view = options.view;
    if (options.motion == CameraMotion::kEach) return view;
    std::vector<TimeValue> times;
    for (const Moment& moment : moments)
        times.push_back(moment.t);
    const bool follows = options.motion == CameraMotion::kFollows;
    LongWork aiming("Aiming the camera", times.size() * (follows ? 3 : 1));
    view.path = PathThrough(view, std::move(times), follows, [&] { aiming.Advance(); });
    return view;
}

std::string SecondsAt(TimeValue t) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f s", double{1} * t / GetTicksPerFrame() / GetFrameRate());
    return text;
}

// Names that were asked for and are not in the pictures.
class MissingNames {
  public:
    explicit MissingNames(const RenderOptions& options) : options_(options) {}

    // Of those that nobody asked for one by one, which have no room.
    void Add(const Picture& picture, TimeValue t) {
        for (const std::string& name : picture.namesWithoutRoom)
            Add("there is no room for the names of: ", name, t);
        for (const std::string& name : picture.namesOutside)
            if (std::ranges::count(options_.view.namesAsked, name) > 0)
                Add("these are outside of the picture: ", name, t);
    }

    // A line for all that are missing for one reason from the same moment on, equally often.
    std::vector<std::string> Told() const {
        std::map<std::tuple<TimeValue, std::size_t, std::string>, std::string> lines;
        for (const auto& [what, miss] : misses_) {
            std::string& names = lines[{miss.first, miss.pictures, what.first}];
            names += (names.empty() ? "" : ", ") + InTable(what.second);
        }
        std::vector<std::string> told;
        for (const auto& [miss, names] : lines) {
            const auto& [first, pictures, why] = miss;
            const std::string more =
                pictures > 1 ? "and in " + Counted(pictures - 1, "further picture") + ' ' : "";
            told.push_back("at " + SecondsAt(first) + ' ' + more + why + names);
        }
        return told;
    }

  private:
    struct Miss {
        TimeValue first;
        std::size_t pictures = 0;
    };

    void Add(const std::string& why, const std::string& name, TimeValue t) {
        ++misses_.try_emplace({why, name}, Miss{t}).first->second.pictures;
    }

    const RenderOptions& options_;
    std::map<std::pair<std::string, std::string>, Miss> misses_;
};

void Write(const Picture& picture, const std::string& file, RenderResult& result) {
    SavePicture(picture, file);
    result.files.push_back(file);
    result.width = picture.width;
    result.height = picture.height;
}

struct SheetSize {
    std::size_t columns;
    std::size_t width;  // pixels
    std::size_t height;
};

// Throws before anything is drawn.
SheetSize SizeOfSheet(const RenderOptions& options, std::size_t count) {
    const auto columns = std::min(static_cast<std::size_t>(options.sheetColumns), count);
    const auto rows = (count + columns - 1) / columns;
    const SheetSize size{columns, columns * static_cast<std::size_t>(options.view.width),
                         rows * static_cast<std::size_t>(options.view.height)};
    if (std::max(size.width, size.height) > kLargestSheet)
        Refuse("--sheet: " + std::to_string(count) + " pictures make a sheet of " +
               std::to_string(size.width) + "x" + std::to_string(size.height) +
               " pixels, of which it can have 16,384 each way");
    return size;
}

// Draws one moment after the other, as long work.
void DrawEach(const RenderOptions& options, const std::vector<Moment>& moments,
              ViewportSettings view, RenderResult& result,
              const std::function<void(const Picture&, std::size_t)>& take) {
    MissingNames missing(options);
    LongWork drawing("Drawing", moments.size(), "picture");
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const auto& [frame, t] = moments[i];
        if (options.sheetColumns > 0)
            view.caption = "frame " + std::to_string(frame) + ", " + SecondsAt(t);
        const Picture picture = PictureAt(view, t, NoPictureOf(options));
        missing.Add(picture, t);
        take(picture, i);
        drawing.Advance();
    }
    result.complaints = missing.Told();
}

// On a sheet each picture says which moment it is, as a file does by its name.
void RenderSheet(const RenderOptions& options, const std::vector<Moment>& moments,
                 const ViewportSettings& view, RenderResult& result) {
    const SheetSize size = SizeOfSheet(options, moments.size());
    Picture sheet = EmptySheet(static_cast<int>(size.width), static_cast<int>(size.height));
    DrawEach(options, moments, view, result, [&](const Picture& picture, std::size_t i) {
        PutOnSheet(picture, static_cast<int>(i % size.columns) * picture.width,
                   static_cast<int>(i / size.columns) * picture.height, sheet);
    });
    Write(sheet, options.file, result);
}

void RenderFiles(const RenderOptions& options, const std::vector<Moment>& moments,
                 const ViewportSettings& view, RenderResult& result) {
    DrawEach(options, moments, view, result, [&](const Picture& picture, std::size_t i) {
        const bool isNumbered = !options.frames.empty();
        Write(picture, isNumbered ? WithFrame(options.file, moments[i].frame) : options.file,
              result);
    });
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
    if (options.sheetColumns > 0) SizeOfSheet(options, options.frames.front().Count());
    CoreStage stage(options.guests);
    stage.Open(options.scene);
    CheckNames(options);
    RenderResult result;
    const std::vector<Moment> moments = MomentsOf(options, stage);
    (options.sheetColumns > 0 ? RenderSheet : RenderFiles)(options, moments,
                                                           ViewOf(options, moments), result);
    for (const std::string& complaint : stage.TakeNewsInOne().complaints)
        result.complaints.push_back(complaint);
    return result;
}

}  // namespace headless
