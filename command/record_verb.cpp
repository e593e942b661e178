#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

#include "command/capture_files.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/record.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"

namespace headless {
namespace {

struct RecordArguments {
    RecordOptions options;
    bool plainController = false;
    Audience audience = Audience::kPerson;
};

// A scene may be saved in the place of the one that is recorded into.
void CheckFiles(const RecordOptions& options) {
    std::vector<NamedFile> captures;
    for (const std::string& capture : options.captures)
        captures.push_back({"CAPTURE", capture});
    const NamedFile scene{kOutput, options.scene};
    const std::vector<NamedFile> tables = {
        {"--poses", options.poses}, {"--csv", options.csv}, {"--trace", options.trace}};
    KeepApart(captures, {scene, tables[0], tables[1], tables[2]});
    KeepApart({{"--into", options.into}}, tables);
}

// The host counts in ticks, and a frame is a whole number of them.
void CheckRate(const RecordOptions& options) {
    if (!options.frameRate) return;
    const SessionSettings usual;
    const int ticks = usual.frameRate * usual.ticksPerFrame;
    CheckRange("--fps", *options.frameRate, {1, ticks});
    if (ticks % *options.frameRate == 0) return;
    const auto nearest = [&](int step) {
        int rate = *options.frameRate;
        while (ticks % rate != 0)
            rate += step;
        return std::to_string(rate);
    };
    Refuse("--fps: a second of the host's has " + std::to_string(ticks) + " ticks, which " +
           std::to_string(*options.frameRate) + " frames do not share out evenly; " + nearest(-1) +
           " and " + nearest(1) + " do");
}

void RunRecord(const RecordArguments& arguments) {
    RecordOptions options = arguments.options;
    CheckRate(options);
    CaptureFiles found = FilesOfCaptures(options.captures);
    options.captures = std::move(found.files);
    CheckFiles(options);
    if (options.captures.size() > 1 && !options.csv.empty())
        Refuse("--csv: the positions of several captures do not go into one file");
    if (options.captures.size() > 1 && !options.take.empty())
        Refuse("--take: several captures do not go into one take");
    options.optimisedController = !arguments.plainController;
    ExpectFile(options.scene);
    TellInAnyCase();
    RecordResult result = Record(options);
    for (CaptureFiles::Missing& missing : found.missing) {
        replay::CaptureReport& report = result.captures.emplace_back().report;
        report.recording.capture = std::move(missing.named);
        report.error = std::move(missing.why);
    }
    Print(std::cout, result, arguments.audience);
    if (result.isFaulty || !std::ranges::all_of(result.captures, &CaptureResult::IsRecorded))
        throw Ended{kFailed};
}

void AddTakeOptions(CLI::App& verb, RecordOptions& options) {
    AddName(verb, "--take", options.take,
            "Record into the take of this name; that of the capture's file if not said");
    AddSwitch(verb, "--replace", options.replaces,
              "Leave nothing of a take that is in the scene already");
    AddSwitch(verb, "--partial", options.takesCutCaptures,
              "Record a capture that holds fewer frames than it announces");
    AddSwitch(verb, "--ground", options.holdsToGround,
              "Keep feet from sinking into the node \"Ground\", which is drawn if there is none");
    AddSwitch(verb, "--follow-camera", options.followsWithCamera,
              "Let the camera follow the take, with keys of its lens");
}

void AddScale(CLI::App& verb, RecordOptions& options) {
    CLI::Option* const scale =
        AddSize(verb, "--scale", options.metresPerUnit,
                "Metres in a unit of the captures: 1 for metres, 0.01 for centimetres, 0.0254 for "
                "inches, 0.056444 for those of the CMU database")
            ->capture_default_str();
    AddSize(verb, "--height", options.heightMetres,
            "Find the scale by the figure of the first capture: its height, in metres, in the "
            "first frame that is recorded")
        ->excludes(scale);
}

// Which part of the captures goes where in the scene's time.
void AddTimes(CLI::App& verb, RecordOptions& options, CLI::Option* into) {
    AddName(verb, "--from", options.from,
            "The first frame to record, counted from 0, or its time as 2.5s")
        ->type_name("FRAME");
    AddName(verb, "--to", options.to, "The last frame to record, or its time")->type_name("FRAME");
    AddName(verb, "--start", options.start,
            "When the first frame is in the scene; if not said, when it is in the capture")
        ->type_name("SECONDS");
    AddWholeNumber(verb, "--fps", options.frameRate,
                   "Frames in a second of the new scene, which has 30 if not said")
        ->excludes(into);
    AddSwitch(
        verb, "--keep-range", options.keepsRange,
        "Leave the scene's range of time as it is; else it becomes that of the takes in a new "
        "scene, and grows until it holds them with --into");
}

void AddWrittenFiles(CLI::App& verb, RecordOptions& options) {
    AddOutput(verb, "--scene", options.scene, "Save the scene");
    AddFile(verb, "--poses", options.poses, "Write what `sample` says of each frame");
    AddFile(verb, "--csv", options.csv,
            "Write where each joint was in each frame (of one capture)");
    AddFile(verb, "--trace", options.trace, "Write the plug-in's trace");
}

}  // namespace

void AddRecordVerb(CLI::App& app) {
    const auto arguments = std::make_shared<RecordArguments>();
    RecordOptions& options = arguments->options;
    CLI::App* verb =
        AddVerb(app, kMaking, "record",
                "Record motion captures into a new scene, or into one that is there. Then undo and "
                "redo the recording, and tell whether the scene came back as it was.");
    AddFiles(*verb, "CAPTURE", options.captures,
             "Motion capture files (.bvh), folders of them, or patterns as \"walk*.bvh\"")
        ->required();
    AddWrittenFiles(*verb, options);
    CLI::Option* const units =
        AddSize(*verb, "--units", options.hostUnitsPerMetre, "Host units in a metre")
            ->capture_default_str();
    CLI::Option* const into = AddFile(
        *verb, "--into", options.into,
        "Record into this scene, in its own units; a guide object goes along its first shape");
    into->excludes(units);
    AddScale(*verb, options);
    AddTimes(*verb, options, into);
    AddTakeOptions(*verb, options);
    AddSwitch(*verb, "--no-optimised-controller", arguments->plainController,
              "Record into the host's own controllers");
    AddCore(*verb, options.guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "record walk.bvh --scale 0.01 -o walk.scene --tape walk.tape");
    verb->callback([arguments] { RunRecord(*arguments); });
}

}  // namespace headless
