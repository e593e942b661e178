#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/render.h"
#include "command/run.h"
#include "command/verb_options.h"
#include "command/verb_texts.h"
#include "command/verbs.h"
#include "command/written_files.h"

namespace headless {
namespace {

struct RunArguments {
    RunOptions options;
    std::vector<std::string> steps;
    std::string script;
    Audience audience = Audience::kPerson;
};

// A scene may be saved in the place of the one that was opened; nothing else that is read is
// written over.
void CheckFiles(const RunArguments& arguments, const std::vector<Step>& steps) {
    const std::vector<NamedFile> kept = {{"--script", arguments.script},
                                         {"--core", arguments.options.guests.core}};
    std::vector<NamedFile> scenes = {{"SCENE", arguments.options.scene}};
    for (const Step& step : steps)
        if (step.kind->file != StepFile::kNone && step.kind->file != StepFile::kDrawn)
            scenes.push_back({step.title, step.File()});
    for (const Step& step : steps) {
        const bool isDrawn = step.kind->file == StepFile::kDrawn;
        if (!isDrawn && step.kind->file != StepFile::kSaved) continue;
        const std::vector<NamedFile> written = {{step.title, step.File()}};
        KeepApart(kept, written);
        if (isDrawn) {
            KeepApart(scenes, written);
            NeedEnding(written.front(), {kPictureEnding});
        }
        ExpectFile(step.File());
    }
}

void RunSteps(RunArguments& arguments) {
    std::vector<Step>& steps = arguments.options.steps;
    steps = arguments.script.empty() ? StepsOfOptions(arguments.steps)
                                     : StepsOfScript(arguments.script);
    CheckFiles(arguments, steps);
    const RunResult result = Run(arguments.options, [&arguments](const RunResult& sofar) {
        if (arguments.audience == Audience::kPerson) PrintNewest(std::cout, sofar);
    });
    Print(std::cout, result, arguments.audience);
    const std::string failure = FailureOf(result);
    if (!failure.empty()) throw Failure(failure);
}

std::string TextOnSteps() {
    std::string text =
        "Words of a step are parted by blanks. A word in double quotes may hold blanks, and a "
        "doubled quote inside it stands for one. Places are in metres, Y up, as the Core sees "
        "them.\n\n";
    for (const StepKind& kind : StepKinds())
        text += Title(kind) + '\t' + std::string(kind.help) + '\n';
    return text;
}

}  // namespace

void AddRunVerb(CLI::App& app) {
    const auto arguments = std::make_shared<RunArguments>();
    CLI::App* verb = AddVerb(app, kDriving, "run",
                             "Drive any Core as a person would, step by step. Without steps it "
                             "tells what there is to press.");
    AddFile(*verb, "SCENE", arguments->options.scene, "Scene file to open first");
    AddCore(*verb, arguments->options.guests);
    CLI::Option* const steps = verb->add_option("--do", arguments->steps, "Do this step")
                                   ->expected(1)
                                   ->take_all()
                                   ->type_name(kStepValue);
    AddFile(*verb, "--script", arguments->script,
            "Do the steps in this file, a line each; # begins a comment")
        ->excludes(steps);
    AddSwitch(*verb, "--keep-going", arguments->options.keepsGoing, "Go on when a step has failed");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "run walk.scene --do \"select walk_Hips\" --do delete --do undo");
    verb->footer(TextOnSteps() + '\n' + verb->get_footer());
    verb->callback([arguments] { RunSteps(*arguments); });
}

}  // namespace headless
