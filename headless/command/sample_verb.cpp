#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <vector>

#include "command/apart.h"
#include "command/core_environment.h"
#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct Words {
    std::string scene;
    std::vector<std::string> nodes;
    std::string times;
    std::string csv;
};

void Run(const Words& words) {
    KeepApart({{"SCENE", words.scene}}, {{"--csv", words.csv}});
    CoreStage stage(Company::kPluginAndCore);
    stage.Open(words.scene);
    ScratchFile csv(words.csv);
    try {
        stage.AskCore({{kSampleVariable, words.times},
                       {kSampleNodesVariable, Lines(words.nodes)},
                       {kCsvVariable, csv.Path()}});
    } catch (const Failure& failure) {
        throw Failure(csv.Named(failure.what()), failure.Status());
    }
    if (words.csv.empty())
        std::cout << std::ifstream(csv.Path(), std::ios::binary).rdbuf();
    else
        csv.Keep();
}

}  // namespace

void AddSampleVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    CLI::App* verb = app.add_subcommand(
        "sample",
        "Write where the Core's nodes are, as comma-separated values in Core space: metres, Y up, "
        "rotations as quaternions, scales as metres in a unit of the node's own space.");
    AddFile(*verb, "SCENE", words->scene, "Scene file")->required();
    verb->add_option("--node", words->nodes,
                     "The host's name of a node; may be said again for more; all if none is named")
        ->expected(1)
        ->take_all();
    verb->add_option("--times", words->times, "START:END:STEP in seconds, END included")
        ->required();
    AddFile(*verb, "--csv", words->csv, "Write to a file instead of stdout");
    AddExample(*verb, "sample build/demo/take.scene --node 01_01_Hips --times 0:2:0.5");
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
