#include <CLI/CLI.hpp>
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/record.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "platform/process.h"

namespace headless {
namespace {

const char* SameOrNot(bool identical) {
    return identical ? "identical" : "NOT identical";
}

double FurthestMetres(const RecordResult& result) {
    double furthest = 0;
    for (const replay::CaptureReport& capture : result.captures)
        furthest = std::max(furthest, capture.maxPositionErrorMetres);
    return furthest;
}

void PrintCapture(std::ostream& out, const replay::CaptureReport& capture) {
    const double seconds = static_cast<double>(capture.frames) * capture.frameSeconds;
    out << "Recorded " << capture.path << ": " << Counted(capture.joints, "joint") << ", "
        << Counted(capture.frames, "frame") << " (" << std::setprecision(1) << seconds
        << " s of motion)";
}

void PrintLift(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Lifted onto the ground: " << Counted(capture.liftedFrames, "frame") << ", by "
        << std::setprecision(1) << capture.maxLiftMetres * 100 << " cm at most\n";
}

void PrintLens(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Camera as written: field of view within " << std::setprecision(7)
        << capture.maxFieldOfViewErrorDegrees << " degrees, target distance within "
        << std::setprecision(4) << capture.maxTargetDistanceErrorMetres * 1000 << " mm\n";
}

void PrintKept(std::ostream& out, const replay::CaptureReport& capture) {
    out << "Kept of the take before: its motion from " << std::setprecision(4)
        << capture.kept->fromSeconds << " s to " << capture.kept->untilSeconds
        << " s, behind the last frame (--replace leaves nothing of it)\n";
}

// A scene that is named and not saved is told among the complaints.
void PrintNotSaved(std::ostream& out, const RecordResult& result) {
    if (!result.saved.empty()) return;
    out << (result.hasTables ? "The scene was not saved" : "Nothing was saved");
    out << (result.isFaulty ? "\n" : ": -o FILE saves the scene\n");
}

nlohmann::ordered_json JsonOf(const RecordResult& result, const replay::CaptureReport& capture) {
    nlohmann::ordered_json object = {{"capture", capture.path},
                                     {"joints", capture.joints},
                                     {"frames", capture.frames},
                                     {"frameSeconds", capture.frameSeconds},
                                     {"maxPositionErrorMetres", capture.maxPositionErrorMetres}};
    if (result.holdsToGround) {
        object["liftedFrames"] = capture.liftedFrames;
        object["maxLiftMetres"] = capture.maxLiftMetres;
    }
    if (result.followsWithCamera) {
        object["maxFieldOfViewErrorDegrees"] = capture.maxFieldOfViewErrorDegrees;
        object["maxTargetDistanceErrorMetres"] = capture.maxTargetDistanceErrorMetres;
    }
    if (capture.kept) {
        object["keptFromSeconds"] = capture.kept->fromSeconds;
        object["keptUntilSeconds"] = capture.kept->untilSeconds;
    }
    return object;
}

}  // namespace

void PrintForPerson(std::ostream& out, const RecordResult& result) {
    out << std::fixed;
    for (const replay::CaptureReport& capture : result.captures) {
        PrintCapture(out, capture);
        if (&capture != &result.captures.back()) out << '\n';
    }
    out << " in " << std::setprecision(2) << result.recordSeconds << " s\n";
    PrintEach(out, kComplaint, result.complaints);
    out << "In the scene: " << Counted(result.nodes, "node") << " with "
        << Counted(result.keys, "key") << ", " << std::setprecision(1) << result.bytesPerKey
        << " bytes each\n";
    out << "Furthest from where it is meant to be: " << std::setprecision(4)
        << FurthestMetres(result) * 1000 << " mm\n";
    for (const replay::CaptureReport& capture : result.captures) {
        if (result.holdsToGround) PrintLift(out, capture);
        if (result.followsWithCamera) PrintLens(out, capture);
        if (capture.kept) PrintKept(out, capture);
    }
    out << "Undo (" << Counted(result.undoSteps, "step") << "): scene "
        << SameOrNot(result.undoIdentical) << " to before; redo: scene "
        << SameOrNot(result.redoIdentical) << " to the recording\n";
    out << "Left over after shutdown: " << Counted(result.hostObjectsAlive, "host object") << '\n';
    TellSaved(out);
    PrintNotSaved(out, result);
}

void PrintForProgram(std::ostream& out, const RecordResult& result) {
    nlohmann::ordered_json object;
    if (result.captures.size() == 1) object = JsonOf(result, result.captures.front());
    object["nodes"] = result.nodes;
    object["keys"] = result.keys;
    object["undoSteps"] = result.undoSteps;
    object["undoIdentical"] = result.undoIdentical;
    object["redoIdentical"] = result.redoIdentical;
    object["maxPositionErrorMetres"] = FurthestMetres(result);
    object["bytesPerKey"] = result.bytesPerKey;
    object["hostObjectsAlive"] = result.hostObjectsAlive;
    object["recordSeconds"] = result.recordSeconds;
    object["complaints"] = result.complaints;
    object["saved"] = result.saved;
    for (const replay::CaptureReport& capture : result.captures)
        object["captures"].push_back(JsonOf(result, capture));
    PrintJson(out, object);
}

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

void RunRecord(const RecordArguments& arguments) {
    CheckFiles(arguments.options);
    if (arguments.options.captures.size() > 1 && !arguments.options.csv.empty())
        Refuse("--csv: the positions of several captures do not go into one file");
    if (arguments.options.captures.size() > 1 && !arguments.options.take.empty())
        Refuse("--take: several captures do not go into one take");
    RecordOptions options = arguments.options;
    options.optimisedController = !arguments.plainController;
    options.progress = platform::IsErrorStreamATerminal();
    ExpectFile(options.scene);
    const RecordResult result = Record(options);
    Print(std::cout, result, arguments.audience);
    if (result.isFaulty) throw Ended{kFailed};
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
    AddFiles(*verb, "CAPTURE", options.captures, "Motion capture files (.bvh)")->required();
    AddWrittenFiles(*verb, options);
    AddSize(*verb, "--scale", options.metresPerUnit, "Metres in a unit of the captures")
        ->capture_default_str();
    CLI::Option* const units =
        AddSize(*verb, "--units", options.hostUnitsPerMetre, "Host units in a metre")
            ->capture_default_str();
    AddFile(*verb, "--into", options.into,
            "Record into this scene, in its own units; a guide object goes along its first shape")
        ->excludes(units);
    AddTakeOptions(*verb, options);
    AddSwitch(*verb, "--no-optimised-controller", arguments->plainController,
              "Record into the host's own controllers");
    AddCore(*verb, options.guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "record walk.bvh --scale 0.01 -o walk.scene --tape walk.tape");
    verb->callback([arguments] { RunRecord(*arguments); });
}

}  // namespace headless
