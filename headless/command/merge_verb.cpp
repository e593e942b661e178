#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <vector>

#include "command/core_environment.h"
#include "command/scene_report.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/scene_file_view.h"

namespace headless {
namespace {

struct Words {
    std::string scene;
    std::vector<std::string> others;
    std::string save;
    CompanyWords company;
    bool byHost = false;
    bool json = false;
};

// The Core learns of a file that the host refuses only that nothing came of it. Read here first, it
// is refused with the reason.
void RefuseDamaged(const std::vector<std::string>& scenes) {
    for (const std::string& scene : scenes)
        ViewSceneFile(scene);
}

void Run(const Words& words) {
    CoreStage stage(words.company.Chosen());
    stage.Open(words.scene);
    if (stage.WantsCore() && !words.byHost) {
        RefuseDamaged(words.others);
        stage.AskCore({{kMergeVariable, Lines(words.others)}});
    } else {
        for (const std::string& other : words.others)
            stage.MergeByHost(other);
    }
    const SceneReport report = SaveAndReport(stage, words.scene, words.save);
    Print(std::cout, report, words.json ? Reader::kProgram : Reader::kPerson);
}

}  // namespace

void AddMergeVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    CLI::App* verb = app.add_subcommand("merge", "Let the Core merge other scenes into a scene.");
    AddFile(*verb, "SCENE", words->scene, "Scene file")->required();
    AddFiles(*verb, "OTHER", words->others, "Scene files to merge into it, in this order")
        ->required();
    AddFile(*verb, "--save", words->save, "Where to save the scene")->required();
    verb->add_flag("--by-host", words->byHost,
                   "Let the host merge, as it does where there is no Core");
    AddCompanyOptions(*verb, words->company);
    verb->add_flag("--json", words->json, "Print the result as one JSON object");
    AddExample(*verb,
               "merge build/demo/take.scene build/demo/take.scene --save build/demo/two.scene");
    ExplainReport(*verb);
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
