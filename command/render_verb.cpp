#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <utility>

#include "command/exit_status.h"
#include "command/numbers.h"
#include "command/output.h"
#include "command/render.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"

namespace headless {
namespace {

struct RenderArguments {
    RenderOptions options;
    std::optional<int> sheetColumns;
};

constexpr Range kSheetColumns{1, 512};

FrameRange ReadFrames(const std::string& text) {
    std::array<int, 3> numbers{};
    if (ReadNumbers(text, ':', numbers) != std::errc())
        Refuse("--frames: " + text + " is not FIRST:LAST:STEP in whole frames");
    const FrameRange frames{numbers[0], numbers[1], numbers[2]};
    if (frames.last < frames.first)
        Refuse("--frames: " + text + " has its last frame before the first");
    if (frames.step < 1) Refuse("--frames: " + text + " has no step above 0");
    return frames;
}

void ReadSize(const std::string& text, ViewportSettings& view) {
    constexpr int kSmallest = 16;
    constexpr int kLargest = 8192;
    std::array<int, 2> size{};
    if (ReadNumbers(text, 'x', size) != std::errc())
        Refuse("--size: " + text + " is not WIDTHxHEIGHT in pixels");
    for (const int pixels : size)
        if (pixels < kSmallest || pixels > kLargest)
            Refuse("--size: a picture is 16 to 8,192 pixels wide and high, not " + text);
    view.width = size[0];
    view.height = size[1];
}

void CheckFile(const RenderOptions& options) {
    NeedEnding({kOutput, options.file}, {kPictureEnding});
    KeepApart({{"SCENE", options.scene}}, {{kOutput, options.file}});
    if (options.frames.empty() || options.sheetColumns > 0) return;
    const std::size_t places = FramePlaces(options.file);
    if (places == 1 || (places == 0 && options.frames.front().Count() == 1)) return;
    Refuse(std::string(kOutput) + ": " + options.file + " has " +
           (places == 0 ? "no place" : "several places") +
           " for the number of a frame, where it needs one %04d (or --sheet)");
}

void RunRender(RenderArguments& arguments) {
    if (arguments.sheetColumns) {
        CheckRange("--sheet", *arguments.sheetColumns, kSheetColumns);
        arguments.options.sheetColumns = *arguments.sheetColumns;
    }
    CheckFile(arguments.options);
    ExpectFile(arguments.options.file);
    const RenderResult result = Render(arguments.options);
    PrintEach(std::cout, kComplaint, result.complaints);
    std::cout << "Saved as " << result.files.front();
    if (result.files.size() > 1)
        std::cout << " to " << result.files.back() << ": " << result.files.size()
                  << " pictures of ";
    else
        std::cout << ": a picture of ";
    std::cout << result.width << 'x' << result.height << " pixels\n";
}

// Gives the option for a moment.
CLI::Option* AddTimes(CLI::App& verb, const std::shared_ptr<RenderArguments>& arguments) {
    CLI::Option* const time =
        AddNumber(verb, "--time", arguments->options.seconds, "The moment to draw, in seconds");
    AddRead(verb, "--frames", "FIRST:LAST:STEP", "The frames of the scene to draw, LAST included",
            [arguments](auto& text) { arguments->options.frames = {ReadFrames(text)}; })
        ->excludes(time);
    AddName(verb, "--take", arguments->options.take,
            "Count the frames of this take, as its capture does, and not those of the scene")
        ->needs("--frames");
    return time;
}

ViewSide ReadSide(const std::string& text) {
    constexpr std::array kSides = {
        std::pair("quarter", ViewSide::kQuarter), std::pair("front", ViewSide::kFront),
        std::pair("side", ViewSide::kSide), std::pair("top", ViewSide::kTop)};
    for (const auto& [name, side] : kSides)
        if (text == name) return side;
    Refuse("--view: " + Quoted(text) + " is not quarter, front, side or top");
}

// From where to look, and how the camera goes through the frames.
void AddCameras(CLI::App& verb, const std::shared_ptr<RenderArguments>& arguments) {
    CLI::Option* const camera =
        AddName(verb, "--camera", arguments->options.view.camera,
                "Look through this camera; else by one that holds all that shows in any of the "
                "frames, for which neither cameras nor a flat ground count");
    AddRead(verb, "--view", "SIDE",
            "From where to look: front (from the Core's +Z), side (from its +X), top (from above, "
            "with -Z upwards in the picture), or quarter, from the front, aside and above",
            [arguments](auto& text) { arguments->options.view.side = ReadSide(text); })
        ->default_str("quarter")
        ->excludes(camera);
    const auto add = [&](const char* word, CameraMotion motion, const char* help) {
        CLI::Option* const option = verb.add_flag_callback(
            word, [arguments, motion] { arguments->options.motion = motion; }, help);
        return option->disable_flag_override()->needs("--frames")->excludes(camera);
    };
    CLI::Option* const follow = add("--follow", CameraMotion::kFollows,
                                    "The camera goes along with what moves, always as far away");
    add("--each", CameraMotion::kEach, "The camera is aimed anew at each of the frames")
        ->excludes(follow);
    AddSwitch(verb, "--cameras", arguments->options.view.showsCameras,
              "Draw the scene's cameras as well");
}

void AddNameOptions(CLI::App& verb, ViewportSettings& view) {
    CLI::Option* const names =
        verb.add_flag("--names", view.showsNames, "Write its name beside each node that is drawn");
    names->disable_flag_override();
    verb.add_option("--name", view.namesAsked,
                    "Write the name of this node; as often as there are nodes to name")
        ->expected(1)
        ->take_all()
        ->check([](const std::string& name) { return name.empty() ? "the name is empty" : ""; })
        ->type_name("NODE")
        ->excludes(names);
}

void AddLooks(CLI::App& verb, const std::shared_ptr<RenderArguments>& arguments) {
    ViewportSettings& view = arguments->options.view;
    AddCameras(verb, arguments);
    AddRead(verb, "--size", "WIDTHxHEIGHT",
            "The size of each picture in pixels, 16 to 8,192 each way",
            [arguments](auto& text) { ReadSize(text, arguments->options.view); })
        ->default_str(std::to_string(view.width) + 'x' + std::to_string(view.height));
    AddSwitch(verb, "--wire", view.isWireframe, "Edges instead of faces");
    AddNameOptions(verb, view);
}

}  // namespace

void AddRenderVerb(CLI::App& app) {
    const auto arguments = std::make_shared<RenderArguments>();
    CLI::App* verb =
        AddVerb(app, kLooking, "render",
                "Draw a scene as the host's viewport shows it. Either a moment (--time) "
                "or frames (--frames) are to be named.");
    AddFile(*verb, "SCENE", arguments->options.scene, "Scene file")->required();
    AddOutput(*verb, "", arguments->options.file,
              "PNG file; of several, with %04d for the number of the frame")
        ->required();
    CLI::Option* const time = AddTimes(*verb, arguments);
    AddWholeNumber(
        *verb, "--sheet", arguments->sheetColumns,
        "The frames side by side in one picture, each with frame and time, so many in a row, " +
            Told(kSheetColumns))
        ->needs("--frames");
    AddLooks(*verb, arguments);
    AddGuestOptions(*verb, arguments->options.guests);
    AddExample(*verb, "render walk.scene --time 2.5 -o walk.png");
    verb->callback([arguments, time] {
        if (time->count() == 0 && arguments->options.frames.empty())
            Refuse("--time or --frames is missing (render --help tells more)");
        RunRender(*arguments);
    });
}

}  // namespace headless
