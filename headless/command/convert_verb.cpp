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

struct Words {
    std::string scene;
    std::string save;
    bool json = false;
};

void Run(const Words& words) {
    CoreStage stage(Company::kPluginAndCore);
    stage.Open(words.scene);
    stage.AskCore({{kPressVariable, kConvertOption}});
    const SceneReport report = SaveAndReport(stage, words.scene, words.save);
    Print(std::cout, report, words.json ? Reader::kProgram : Reader::kPerson);
}

}  // namespace

void AddConvertVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    CLI::App* verb =
        app.add_subcommand("convert", "Turn all controllers of a scene into the host's own.");
    AddFile(*verb, "SCENE", words->scene, "Scene file")->required();
    AddFile(*verb, "--save", words->save, "Where to save the scene")->required();
    verb->add_flag("--json", words->json, "Print the result as one JSON object");
    AddExample(*verb, "convert build/demo/take.scene --save build/demo/plain.scene");
    ExplainReport(*verb);
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
