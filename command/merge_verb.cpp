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

struct MergeArguments {
    std::string scene;
    std::vector<std::string> others;
    std::string save;
    GuestFlags guests;
    bool byHost = false;
    bool json = false;
};

// The Core learns of a file that the host refuses only that nothing came of it. Read here first, it
// is refused with the reason.
void RefuseDamaged(const std::vector<std::string>& scenes) {
    for (const std::string& scene : scenes)
        ViewSceneFile(scene);
}

void RunMerge(const MergeArguments& arguments) {
    CoreStage stage(arguments.guests.Chosen());
    stage.Open(arguments.scene);
    if (stage.WantsCore() && !arguments.byHost) {
        RefuseDamaged(arguments.others);
        stage.AskCore({{kMergeVariable, Lines(arguments.others)}});
    } else {
        for (const std::string& other : arguments.others)
            stage.MergeByHost(other);
    }
    const SceneReport report = SaveAndReport(stage, arguments.scene, arguments.save);
    Print(std::cout, report, arguments.json ? Audience::kProgram : Audience::kPerson);
}

}  // namespace

void AddMergeVerb(CLI::App& app) {
    const auto arguments = std::make_shared<MergeArguments>();
    CLI::App* verb = app.add_subcommand("merge", "Let the Core merge other scenes into a scene.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFiles(*verb, "OTHER", arguments->others, "Scene files to merge into it, in this order")
        ->required();
    AddFile(*verb, "--save", arguments->save, "Where to save the scene")->required();
    verb->add_flag("--by-host", arguments->byHost,
                   "Let the host merge, as it does where there is no Core");
    AddGuestOptions(*verb, arguments->guests);
    verb->add_flag("--json", arguments->json, "Print the result as one JSON object");
    AddExample(*verb,
               "merge build/demo/take.scene build/demo/take.scene --save build/demo/two.scene");
    ExplainReport(*verb);
    verb->callback([arguments] { RunMerge(*arguments); });
}

}  // namespace headless
