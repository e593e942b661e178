#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "command/exit_status.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/scene_file_view.h"
#include "headless/scene_view.h"
#include "replay/request.h"

// Verbs that open a scene, do something with it, save it, and tell what the Core finds in it then.
namespace headless {
namespace {

// What stands after a verb has done its work on a scene.
struct SceneReport {
    std::string scene;  // the file that was opened
    std::string saved;  // the file that was written; empty for none
    std::size_t nodes = 0;
    std::string stranger;  // the Core's library if it is not the replay Core, which alone has takes
    std::vector<replay::TakeReport> takes;
    std::vector<std::string> boxes;       // the texts of message boxes
    std::vector<std::string> complaints;  // about files and the Core, a line each
};

// The end of the work on a scene: saves it unless `target` is empty, and asks the Core for its
// takes. That there is no Core which was wanted, or that it fails, is a complaint.
SceneReport SaveAndReport(CoreStage& stage, const std::string& scene, const std::string& target) {
    if (!target.empty()) stage.Save(target);
    SceneReport report;
    report.scene = scene;
    report.saved = target;
    report.nodes = Nodes().size();
    if (stage.HasCore() && !stage.HasReplayCore()) report.stranger = stage.Seat().Library();
    std::string untold;
    try {
        if (stage.HasReplayCore()) report.takes = stage.AskCore({}).takes;
    } catch (const Failure& failure) {
        if (failure.Status() == kStopped) throw;
        untold = failure.what();
    }
    StageNews news = stage.TakeNewsInOne();
    report.complaints = std::move(news.complaints);
    if (!untold.empty()) report.complaints.push_back("no takes are told: " + untold);
    report.boxes = std::move(news.boxes);
    return report;
}

void PrintList(std::ostream& out, std::string_view title, const std::vector<std::string>& texts) {
    for (const std::string& text : texts)
        out << (&text == &texts.front() ? title : ", ") << text;
}

// Paths, each once.
std::vector<std::string> CapturesOf(const replay::TakeReport& take) {
    std::vector<std::string> captures;
    for (const replay::Recording& recording : take.recordings)
        if (std::ranges::find(captures, recording.capture) == captures.end())
            captures.push_back(recording.capture);
    return captures;
}

void PrintForPerson(std::ostream& out, const SceneReport& report) {
    out << report.scene << ": " << Counted(report.nodes, "node") << '\n';
    for (const replay::TakeReport& take : report.takes) {
        out << "Take " << take.name << ": " << Counted(take.nodes.size(), "node");
        if (!take.parent.empty()) out << ", below " << take.parent;
        PrintList(out, ", from ", CapturesOf(take));
        PrintList(out, "; not found: ", take.missing);
        out << '\n';
    }
    if (!report.stranger.empty())
        out << "Takes: none are told, since " << report.stranger << " is not the replay Core\n";
    PrintEach(out, kMessageBox, report.boxes);
    PrintEach(out, kComplaint, report.complaints);
    TellSaved(out);
}

void PrintForProgram(std::ostream& out, const SceneReport& report) {
    nlohmann::ordered_json object = {{"scene", report.scene},
                                     {"nodes", report.nodes},
                                     {"takes", nlohmann::ordered_json::array()},
                                     {"boxes", report.boxes},
                                     {"complaints", report.complaints},
                                     {"saved", report.saved}};
    if (!report.stranger.empty()) object["takes"] = nullptr;
    for (const replay::TakeReport& take : report.takes)
        object["takes"].push_back({{"name", take.name},
                                   {"parent", take.parent},
                                   {"captures", CapturesOf(take)},
                                   {"nodes", take.nodes.size()},
                                   {"missing", take.missing}});
    PrintJson(out, object);
}

struct SceneArguments {
    std::string scene;
    std::vector<std::string> others;
    std::string output;
    GuestChoice guests;
    bool byHost = false;
    Audience audience = Audience::kPerson;
};

bool MergesByCore(const CoreStage& stage, const SceneArguments& arguments) {
    return !arguments.others.empty() && stage.WantsCore() && !arguments.byHost;
}

template <class Work>
void RunOnScene(const SceneArguments& arguments, const Work& work) {
    ExpectFile(arguments.output);
    CoreStage stage(arguments.guests);
    if (MergesByCore(stage, arguments)) stage.NeedReplayCore();
    stage.Open(arguments.scene);
    work(stage);
    Print(std::cout, SaveAndReport(stage, arguments.scene, arguments.output), arguments.audience);
}

// The Core learns of a file that the host refuses only that nothing came of it. Read here first, it
// is refused with the reason.
void RefuseDamaged(const std::vector<std::string>& scenes) {
    for (const std::string& scene : scenes)
        OrRefuse([&] { return ViewSceneFile(scene); });
}

void Merge(CoreStage& stage, const SceneArguments& arguments) {
    if (MergesByCore(stage, arguments)) {
        RefuseDamaged(arguments.others);
        stage.AskCore({{replay::variable::kMerge, Lines(arguments.others)}});
        return;
    }
    for (const std::string& other : arguments.others)
        stage.MergeByHost(other);
}

}  // namespace

void AddOpenVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb =
        AddVerb(app, kKeeping, "open", "Open a scene, and tell what the Core finds in it.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddOutput(*verb, "--save", arguments->output, "Save the scene as it is then");
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "open walk.scene -o again.scene");
    ExplainReport(*verb);
    verb->callback([arguments] {
        RunOnScene(*arguments, [&](CoreStage& stage) {
            if (arguments->guests.tape.empty()) stage.TellOfTapeBeside(arguments->scene);
        });
    });
}

void AddMergeVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb =
        AddVerb(app, kKeeping, "merge", "Let the Core merge other scenes into a scene.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddFiles(*verb, "OTHER", arguments->others, "Scene files to merge into it, in this order")
        ->required();
    AddOutput(*verb, "--save", arguments->output, "Where to save the scene")->required();
    AddSwitch(*verb, "--by-host", arguments->byHost,
              "Let the host merge, as it does where there is no Core");
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "merge walk.scene again.scene -o both.scene");
    ExplainReport(*verb);
    verb->callback([arguments] {
        RunOnScene(*arguments, [&](CoreStage& stage) { Merge(stage, *arguments); });
    });
}

void AddConvertVerb(CLI::App& app) {
    const auto arguments = std::make_shared<SceneArguments>();
    CLI::App* verb =
        AddVerb(app, kKeeping, "convert", "Turn all controllers of a scene into the host's own.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddOutput(*verb, "--save", arguments->output, "Where to save the scene")->required();
    AddCore(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "convert walk.scene -o plain.scene");
    ExplainReport(*verb);
    verb->callback([arguments] {
        RunOnScene(*arguments, [](CoreStage& stage) { stage.ConvertControllers(); });
    });
}

}  // namespace headless
