#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/info.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct InfoArguments {
    InfoOptions options;
    GuestFlags guests;
    bool json = false;
};

void RunInfo(const InfoArguments& arguments) {
    InfoOptions options = arguments.options;
    options.guests = arguments.guests.Chosen();
    const InfoResult result = Info(options);
    if (arguments.json)
        PrintForProgram(std::cout, result);
    else
        PrintForPerson(std::cout, result);
}

}  // namespace

void AddInfoVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InfoArguments>();
    CLI::App* verb = app.add_subcommand("info", "Tell what a scene file holds.");
    AddFile(*verb, "SCENE", arguments->options.scene, "Scene file")->required();
    AddGuestOptions(*verb, arguments->guests);
    verb->add_flag("--json", arguments->json, "Print the result as one JSON object");
    AddExample(*verb, "info build/demo/take.scene");
    verb->callback([arguments] { RunInfo(*arguments); });
}

}  // namespace headless
