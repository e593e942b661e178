#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/scene_report.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct OpenArguments {
    std::string scene;
    std::string save;
    GuestFlags guests;
    bool json = false;
};

void RunOpen(const OpenArguments& arguments) {
    CoreStage stage(arguments.guests.Chosen());
    stage.Open(arguments.scene);
    const SceneReport report = SaveAndReport(stage, arguments.scene, arguments.save);
    Print(std::cout, report, arguments.json ? Audience::kProgram : Audience::kPerson);
}

}  // namespace

void AddOpenVerb(CLI::App& app) {
    const auto arguments = std::make_shared<OpenArguments>();
    CLI::App* verb =
        app.add_subcommand("open", "Open a scene, and tell what the Core finds in it.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFile(*verb, "--save", arguments->save, "Save the scene as it is then");
    AddGuestOptions(*verb, arguments->guests);
    verb->add_flag("--json", arguments->json, "Print the result as one JSON object");
    AddExample(*verb, "open build/demo/take.scene --save build/demo/again.scene");
    ExplainReport(*verb);
    verb->callback([arguments] { RunOpen(*arguments); });
}

}  // namespace headless
