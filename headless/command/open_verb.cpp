#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/scene_report.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct Words {
    std::string scene;
    std::string save;
    CompanyWords company;
    bool json = false;
};

void Run(const Words& words) {
    CoreStage stage(words.company.Chosen());
    stage.Open(words.scene);
    const SceneReport report = SaveAndReport(stage, words.scene, words.save);
    Print(std::cout, report, words.json ? Reader::kProgram : Reader::kPerson);
}

}  // namespace

void AddOpenVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    CLI::App* verb =
        app.add_subcommand("open", "Open a scene, and tell what the Core finds in it.");
    AddFile(*verb, "SCENE", words->scene, "Scene file")->required();
    AddFile(*verb, "--save", words->save, "Save the scene as it is then");
    AddCompanyOptions(*verb, words->company);
    verb->add_flag("--json", words->json, "Print the result as one JSON object");
    AddExample(*verb, "open build/demo/take.scene --save build/demo/again.scene");
    ExplainReport(*verb);
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
