#include <CLI/CLI.hpp>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "command/chosen_takes.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "interchange/page.h"
#include "platform/narrow_path.h"
#include "platform/process.h"

namespace headless {
namespace {

struct ViewArguments {
    std::string scene;
    std::string file;
    TakeChoice takes;
    GuestChoice guests;
    Audience audience = Audience::kPerson;
};

struct ViewResult {
    std::string scene;
    ChosenTakes takes;
    std::uintmax_t bytes = 0;  // of the page
    std::vector<std::string> complaints;
    std::string saved;
};

void PrintForPerson(std::ostream& out, const ViewResult& result) {
    constexpr double kMegabyte = 1e6;
    for (const std::unique_ptr<ChosenTake>& chosen : result.takes) {
        const interchange::Take& take = chosen->take;
        out << "Take " << InTable(chosen->asRecorded.name) << ": "
            << Counted(take.nodes.size(), "node") << ", " << Counted(take.frameCount, "frame")
            << " (" << std::fixed << std::setprecision(2) << take.startSeconds << " to "
            << take.EndSeconds() << " s)\n";
    }
    out << "The page: " << std::setprecision(1) << static_cast<double>(result.bytes) / kMegabyte
        << " MB, for any browser, without a network\n";
    PrintEach(out, kComplaint, result.complaints);
    TellSaved(out);
}

void PrintForProgram(std::ostream& out, const ViewResult& result) {
    nlohmann::ordered_json takes = nlohmann::ordered_json::array();
    for (const std::unique_ptr<ChosenTake>& chosen : result.takes)
        takes.push_back({{"name", chosen->asRecorded.name},
                         {"nodes", chosen->take.nodes.size()},
                         {"frames", chosen->take.frameCount},
                         {"frameSeconds", chosen->take.frameSeconds},
                         {"startSeconds", chosen->take.startSeconds}});
    PrintJson(out, {{"scene", result.scene},
                    {"takes", takes},
                    {"bytes", result.bytes},
                    {"complaints", result.complaints},
                    {"saved", result.saved}});
}

// The page without takes, which the build makes where npm is.
std::string ViewerFile() {
    return platform::BesideProgram("viewer/page.html");
}

std::string Viewer() {
    const std::string path = ViewerFile();
    if (!std::filesystem::exists(platform::FromNarrow(path)))
        throw Failure(path +
                      ": the page that takes are put into is not there: it is made where npm and "
                      "its network are when the program is built");
    return TextOfFile(path);
}

// What a page holds is UTF-8.
void TurnNames(interchange::Take& take) {
    take.name = Utf8(take.name);
    for (interchange::TakeNode& node : take.nodes)
        node.name = Utf8(node.name);
}

void Write(const ViewArguments& arguments, const std::string& viewer, ChosenTakes& chosen) {
    for (const std::unique_ptr<ChosenTake>& one : chosen)
        TurnNames(one->take);
    const std::u8string stem = platform::FromNarrow(arguments.scene).stem().u8string();
    const std::string title(stem.begin(), stem.end());
    const auto write = [&](const std::vector<interchange::MovingTake>& takes, std::ostream& out,
                           const interchange::FrameDone& done) {
        const std::string refusal = interchange::WritePage(takes, title, viewer, out, done);
        if (!refusal.empty()) throw Failure(ViewerFile() + ": " + refusal);
    };
    SaveTakes(arguments.file, chosen, {"Writing the page", 1, write});
}

void RunView(const ViewArguments& arguments) {
    NeedEnding({kOutput, arguments.file}, {".html", ".htm"});
    CheckTakeChoice(arguments.takes);
    KeepApart({{"SCENE", arguments.scene}}, {{kOutput, arguments.file}});
    ExpectFile(arguments.file);
    const std::string viewer = Viewer();
    CoreStage stage(arguments.guests);
    stage.Open(arguments.scene);
    ViewResult result{.scene = arguments.scene,
                      .takes = TakesOfStage(stage, arguments.scene, arguments.takes),
                      .complaints{},
                      .saved = arguments.file};
    Write(arguments, viewer, result.takes);
    result.bytes = std::filesystem::file_size(platform::FromNarrow(arguments.file));
    result.complaints = stage.TakeNewsInOne().complaints;
    Print(std::cout, result, arguments.audience);
}

}  // namespace

void AddViewVerb(CLI::App& app) {
    const auto arguments = std::make_shared<ViewArguments>();
    CLI::App* verb =
        AddVerb(app, kTakingAlong, "view",
                "Write a page that shows takes in any browser. It plays them, tells the "
                "place and turn of each joint, and needs neither server nor network; "
                "with #t=12.5 behind its address it opens at that second.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddOutput(*verb, "", arguments->file, "The page, whose name ends in .html or .htm")->required();
    AddTakeChoice(*verb, arguments->takes);
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "view walk.scene -o walk.html");
    verb->callback([arguments] { RunView(*arguments); });
}

}  // namespace headless
