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
    std::string csv;
};

void RunSample(const SampleArguments& arguments) {
    KeepApart({{"SCENE", arguments.scene}}, {{"--csv", arguments.csv}});
    CoreStage stage(Guests::kPluginAndCore);
    stage.Open(arguments.scene);
    CoreFile csv(arguments.csv);
    try {
        stage.AskCore({{replay::variable::kSample, arguments.times},
                       {replay::variable::kSampleNodes, Lines(arguments.nodes)},
                       {replay::variable::kCsv, csv.Path()}});
    } catch (const Failure& failure) {
        throw Failure(csv.Named(failure.what()), failure.Status());
    }
    if (arguments.csv.empty())
        std::cout << std::ifstream(csv.Path(), std::ios::binary).rdbuf();
    else
        csv.Keep();
}

}  // namespace

void AddSampleVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SampleArguments>();
    CLI::App* verb = app.add_subcommand(
        "sample",
        "Write where the Core's nodes are, as comma-separated values in Core space: metres, Y up, "
        "rotations as quaternions, scales as metres in a unit of the node's own space.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    verb->add_option("--node", arguments->nodes,
                     "The host's name of a node; may be said again for more; all if none is named")
        ->expected(1)
        ->take_all();
    verb->add_option("--times", arguments->times, "START:END:STEP in seconds, END included")
        ->required();
    AddFile(*verb, "--csv", arguments->csv, "Write to a file instead of stdout");
    AddExample(*verb, "sample build/demo/take.scene --node 01_01_Hips --times 0:2:0.5");
    verb->callback([arguments] { RunSample(*arguments); });
}

}  // namespace headless
