#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <vector>

#include "command/exit_status.h"
#include "command/record.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "platform/process.h"

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
    const NamedFile scene{"--scene", options.scene};
    const std::vector<NamedFile> tables = {
        {"--poses", options.poses}, {"--csv", options.csv}, {"--trace", options.trace}};
    KeepApart(captures, {scene, tables[0], tables[1], tables[2]});
    KeepApart({{"--into", options.into}}, tables);
}

void RunRecord(const RecordArguments& arguments) {
    CheckFiles(arguments.options);
    if (arguments.options.captures.size() > 1 && !arguments.options.csv.empty())
        throw Failure("--csv: the positions of several captures do not go into one file",
                      kWrongUsage);
    if (arguments.options.captures.size() > 1 && !arguments.options.take.empty())
        throw Failure("--take: several captures do not go into one take", kWrongUsage);
    RecordOptions options = arguments.options;
    options.optimisedController = !arguments.plainController;
    options.progress = platform::IsErrorStreamATerminal();
    const RecordResult result = Record(options);
    Print(std::cout, result, arguments.audience);
    if (result.isFaulty) throw Ended{kFailed};
}

void AddTakeOptions(CLI::App& verb, RecordOptions& options) {
    AddName(verb, "--take", options.take,
            "Record into the take of this name (else that of the capture's file)");
    verb.add_flag("--replace", options.replaces,
                  "Leave nothing of a take that is in the scene already");
    verb.add_flag("--partial", options.takesCutCaptures,
                  "Record a capture that holds fewer frames than it announces");
    verb.add_flag("--ground", options.holdsToGround,
                  "Keep feet from sinking into the node \"Ground\", which is drawn if there is "
                  "none");
    verb.add_flag("--follow-camera", options.followsWithCamera,
                  "Let the camera follow the take, with keys of its lens");
}

void AddWrittenFiles(CLI::App& verb, RecordOptions& options) {
    AddFile(verb, "--scene", options.scene, "Save the scene");
    AddFile(verb, "--poses", options.poses, "Write what `sample` says of each frame");
    AddFile(verb, "--csv", options.csv,
            "Write where each joint was in each frame (of one capture)");
    AddFile(verb, "--trace", options.trace, "Write the plug-in's trace");
}

}  // namespace

void AddRecordVerb(CLI::App& app) {
    const auto arguments = std::make_shared<RecordArguments>();
    RecordOptions& options = arguments->options;
    CLI::App* verb = app.add_subcommand(
        "record", "Record motion captures into a new scene, or into one that is there.");
    AddFiles(*verb, "CAPTURE", options.captures, "Motion capture files (.bvh)")->required();
    AddSize(*verb, "--scale", options.metresPerUnit, "Metres in a unit of the captures")
        ->capture_default_str();
    CLI::Option* const units =
        AddSize(*verb, "--units", options.hostUnitsPerMetre, "Host units in a metre")
            ->capture_default_str();
    AddFile(*verb, "--into", options.into,
            "Record into this scene, in its own units; a guide object goes along its first shape")
        ->excludes(units);
    AddTakeOptions(*verb, options);
    AddWrittenFiles(*verb, options);
    verb->add_flag("--no-optimised-controller", arguments->plainController,
                   "Record into the host's own controllers");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb,
               "record /usr/share/assimp/models/BVH/01_01.bvh --scene build/demo/mine.scene");
    verb->callback([arguments] { RunRecord(*arguments); });
}

}  // namespace headless
