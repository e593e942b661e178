#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>

#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "replay/request.h"

namespace headless {
namespace {

struct SampleArguments {
    std::string scene;
    std::vector<std::string> nodes;
    std::string times;
    std::string output;
    GuestChoice guests;
};

void RunSample(const SampleArguments& arguments) {
    KeepApart({{"SCENE", arguments.scene}}, {{kOutput, arguments.output}});
    ExpectFile(arguments.output);
    CoreStage stage(arguments.guests);
    stage.NeedReplayCore();
    stage.Open(arguments.scene);
    CoreFile csv(arguments.output);
    stage.AskCoreForFile({{replay::variable::kSample, arguments.times},
                          {replay::variable::kSampleNodes, Lines(arguments.nodes)}},
                         csv);
    if (arguments.output.empty()) {
        std::cout << std::ifstream(csv.Path(), std::ios::binary).rdbuf();
        return;
    }
    csv.Keep();
    TellSaved(std::cout);
}

}  // namespace

void AddSampleVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SampleArguments>();
    CLI::App* verb = AddVerb(
        app, kLooking, "sample",
        "Write where the Core's nodes are, as comma-separated values. They are in Core space: "
        "metres, Y up, rotations as quaternions, scales as metres in a unit of the node's own "
        "space.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddNodes(*verb, arguments->nodes);
    verb->add_option("--times", arguments->times, "In seconds, END included")
        ->type_name("START:END:STEP")
        ->required();
    AddOutput(*verb, "--csv", arguments->output, "Write to a file and not to the terminal");
    AddCore(*verb, arguments->guests);
    AddExample(*verb, "sample walk.scene --node walk_Hips --times 0:2:0.5");
    verb->callback([arguments] { RunSample(*arguments); });
}

}  // namespace headless
