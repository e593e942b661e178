#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/exit_status.h"
#include "command/info.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct InfoArguments {
    std::string scene;
    GuestFlags guests;
    Audience audience = Audience::kPerson;
};

void OpenInHost(Guests guests, InfoResult& result) {
    CoreStage stage(guests);
    const FileOutcome outcome = stage.Host().OpenScene(result.scene);
    if (!outcome.error.empty()) throw Failure(outcome.error);
    for (const ClassInFile& type : result.file.classes)
        if (!IsClassLoaded(type)) result.keptClasses.push_back(type);
    result.utilityChunks = stage.Host().UtilityChunks();
    stage.ShutDown();
}

// Looks at the file alone, and then opens it with the guests that are wanted. The file can be told
// of also where there is nobody to open it.
InfoResult Info(const std::string& scene, Guests guests) {
    InfoResult result;
    result.scene = scene;
    result.file = ViewSceneFile(scene);
    if (guests == Guests::kNobody) {
        result.whyNotOpened = "the file alone was looked at";
        return result;
    }
    try {
        OpenInHost(guests, result);
    } catch (const Failure& failure) {
        result.whyNotOpened = failure.what();
    }
    return result;
}

void RunInfo(const InfoArguments& arguments) {
    Print(std::cout, Info(arguments.scene, arguments.guests.Chosen()), arguments.audience);
}

}  // namespace

void AddInfoVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InfoArguments>();
    CLI::App* verb = app.add_subcommand("info", "Tell what a scene file holds.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "info build/demo/take.scene");
    verb->callback([arguments] { RunInfo(*arguments); });
}

}  // namespace headless
