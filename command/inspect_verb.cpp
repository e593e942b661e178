#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/inspection.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct InspectArguments {
    InspectOptions options;
    bool json = false;
};

void RunInspect(const InspectArguments& arguments) {
    const Inspection inspection = Inspect(arguments.options);
    if (arguments.json)
        PrintForProgram(std::cout, inspection);
    else
        PrintForPerson(std::cout, inspection);
}

}  // namespace

void AddInspectVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InspectArguments>();
    CLI::App* verb = app.add_subcommand(
        "inspect",
        "Tell what the Core sees of each node, its own or not. World matrices lead from object "
        "space, in host units, to Core space: metres, Y up. Bounds, lengths and target distances "
        "are in host units.");
    AddFile(*verb, "SCENE", arguments->options.scene, "Scene file")->required();
    verb->add_option("--node", arguments->options.nodes,
                     "The host's name of a node; may be said again for more; all if none is named")
        ->expected(1)
        ->take_all();
    AddNumber(*verb, "--time", arguments->options.seconds, "When, in seconds")
        ->capture_default_str();
    verb->add_flag("--json", arguments->json, "Print the result as one JSON object");
    AddExample(*verb, "inspect build/demo/take.scene --node 01_01_Hips --time 0.5");
    verb->callback([arguments] { RunInspect(*arguments); });
}

}  // namespace headless
