#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/core_environment.h"
#include "command/scene_report.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

// The Core's option that turns the plug-in's controllers into the host's own.
constexpr char kConvertOption[] = "1028";

struct ConvertArguments {
    std::string scene;
    std::string save;
    bool json = false;
};

void RunConvert(const ConvertArguments& arguments) {
    CoreStage stage(Guests::kPluginAndCore);
    stage.Open(arguments.scene);
    stage.AskCore({{kPressVariable, kConvertOption}});
    const SceneReport report = SaveAndReport(stage, arguments.scene, arguments.save);
    Print(std::cout, report, arguments.json ? Audience::kProgram : Audience::kPerson);
}

}  // namespace

void AddConvertVerb(CLI::App& app) {
    const auto arguments = std::make_shared<ConvertArguments>();
    CLI::App* verb =
        app.add_subcommand("convert", "Turn all controllers of a scene into the host's own.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFile(*verb, "--save", arguments->save, "Where to save the scene")->required();
    verb->add_flag("--json", arguments->json, "Print the result as one JSON object");
    AddExample(*verb, "convert build/demo/take.scene --save build/demo/plain.scene");
    ExplainReport(*verb);
    verb->callback([arguments] { RunConvert(*arguments); });
}

}  // namespace headless
