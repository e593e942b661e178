#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <iostream>
#include <memory>

#include "command/exit_status.h"
#include "command/print_result.h"
#include "command/record.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

// Empty, or what is wrong with a size.
std::string CheckSize(const std::string& text) {
    double size = 0;
    const bool isNumber = CLI::detail::lexical_cast(text, size);
    return isNumber && size > 0 && std::isfinite(size) ? "" : text + " is not a number above 0";
}

struct Words {
    RecordOptions options;
    bool plainController = false;
    bool json = false;
};

void Run(const Words& words) {
    if (words.options.captures.size() > 1 && !words.options.csv.empty())
        throw Failure("--csv: the positions of several captures do not go into one file",
                      kWrongUsage);
    RecordOptions options = words.options;
    options.optimisedController = !words.plainController;
    options.progress = isatty(STDERR_FILENO) != 0;
    const RecordResult result = Record(options);
    if (words.json)
        PrintForProgram(std::cout, result);
    else
        PrintForPerson(std::cout, result);
}

}  // namespace

void AddRecordVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    RecordOptions& options = words->options;
    CLI::App* verb = app.add_subcommand("record", "Record motion captures into a new scene.");
    AddFiles(*verb, "CAPTURE", options.captures, "Motion capture files (.bvh)")->required();
    verb->add_option("--scale", options.metresPerUnit, "Metres in a unit of the captures")
        ->check(CheckSize, "ABOVE 0")
        ->capture_default_str();
    verb->add_option("--units", options.hostUnitsPerMetre, "Host units in a metre")
        ->check(CheckSize, "ABOVE 0")
        ->capture_default_str();
    AddFile(*verb, "--scene", options.scene, "Save the scene");
    AddFile(*verb, "--poses", options.poses, "Write what `sample` says of each frame");
    AddFile(*verb, "--csv", options.csv,
            "Write where each joint was in each frame (of one capture)");
    AddFile(*verb, "--trace", options.trace, "Write the plug-in's trace");
    verb->add_flag("--no-optimised-controller", words->plainController,
                   "Record into the host's own controllers");
    verb->add_flag("--json", words->json, "Print the result as one JSON object");
    AddExample(*verb,
               "record /usr/share/assimp/models/BVH/01_01.bvh --scene build/demo/mine.scene");
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
