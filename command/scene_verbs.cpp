#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command/scene_report.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/control/keyframe_chunk.h"
#include "headless/scene_file_view.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/node.h"
#include "replay/request.h"
#include "tvl/ids.h"

// Verbs that open a scene, do something with it, save it, and tell what the Core finds in it then.
namespace headless {
namespace {

struct SceneArguments {
    std::string scene;
    std::vector<std::string> others;
    std::string save;
    GuestFlags guests;
    bool byHost = false;
    Audience audience = Audience::kPerson;
};

template <class Work>
void RunOnScene(const SceneArguments& arguments, const Work& work) {
    CoreStage stage(arguments.guests.Chosen());
    stage.Open(arguments.scene);
    work(stage);
    Print(std::cout, SaveAndReport(stage, arguments.scene, arguments.save), arguments.audience);
}

// The Core learns of a file that the host refuses only that nothing came of it. Read here first, it
// is refused with the reason.
void RefuseDamaged(const std::vector<std::string>& scenes) {
    for (const std::string& scene : scenes)
        ViewSceneFile(scene);
}

void Merge(CoreStage& stage, const SceneArguments& arguments) {
    if (stage.WantsCore() && !arguments.byHost) {
        RefuseDamaged(arguments.others);
        stage.AskCore({{replay::variable::kMerge, Lines(arguments.others)}});
        return;
    }
    for (const std::string& other : arguments.others)
        stage.MergeByHost(other);
}

bool HasKeyframes(Animatable* part) {
    if (!part) return false;
    if (IsKeyframes(part->ClassID())) return true;
    for (int index = 0; index < part->NumSubs(); ++index)
        if (HasKeyframes(part->SubAnim(index))) return true;
    return false;
}

// A button has no answer.
void Convert(CoreStage& stage) {
    stage.AskCore({{replay::variable::kPress, std::to_string(TVL::kConvertAllControllers)}});
    for (const NodeView& view : Nodes()) {
        INode* const node = GetCOREInterface()->GetINodeByHandle(view.handle);
        if (HasKeyframes(node->GetTMController()) || HasKeyframes(node->GetObjectRef()))
            throw Failure(view.name + ": not all controllers of this node could be converted");
    }
}

}  // namespace

void AddOpenVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb =
        app.add_subcommand("open", "Open a scene, and tell what the Core finds in it.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFile(*verb, "--save", arguments->save, "Save the scene as it is then");
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "open build/demo/take.scene --save build/demo/again.scene");
    ExplainReport(*verb);
    verb->callback([arguments] { RunOnScene(*arguments, [](CoreStage&) {}); });
}

void AddMergeVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb = app.add_subcommand("merge", "Let the Core merge other scenes into a scene.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFiles(*verb, "OTHER", arguments->others, "Scene files to merge into it, in this order")
        ->required();
    AddFile(*verb, "--save", arguments->save, "Where to save the scene")->required();
    verb->add_flag("--by-host", arguments->byHost,
                   "Let the host merge, as it does where there is no Core");
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb,
               "merge build/demo/take.scene build/demo/take.scene --save build/demo/two.scene");
    ExplainReport(*verb);
    verb->callback([arguments] {
        RunOnScene(*arguments, [&](CoreStage& stage) { Merge(stage, *arguments); });
    });
}

void AddConvertVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb =
        app.add_subcommand("convert", "Turn all controllers of a scene into the host's own.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFile(*verb, "--save", arguments->save, "Where to save the scene")->required();
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "convert build/demo/take.scene --save build/demo/plain.scene");
    ExplainReport(*verb);
    verb->callback([arguments] { RunOnScene(*arguments, &Convert); });
}

}  // namespace headless
