#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "command/chosen_takes.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "interchange/bvh_file.h"
#include "interchange/gltf_file.h"

namespace headless {
namespace {

using interchange::BvhChoice;
using interchange::FrameDone;
using interchange::GltfForm;
using interchange::Loss;
using interchange::MovingTake;

struct ExportArguments {
    std::string scene;
    std::string file;
    TakeChoice takes;
    BvhChoice bvh;
    GuestChoice guests;
    Audience audience = Audience::kPerson;
    CLI::Option* scale = nullptr;
    CLI::Option* order = nullptr;
};

std::vector<Loss> WriteAsBvh(const std::vector<MovingTake>& takes, const ExportArguments& arguments,
                             std::ostream& out, const FrameDone& done) {
    const MovingTake& only = takes.front();
    return {interchange::WriteBvh(*only.take, *only.poses, arguments.bvh, out, done)};
}

template <GltfForm form>
std::vector<Loss> WriteAsGltf(const std::vector<MovingTake>& takes,
                              const ExportArguments& arguments, std::ostream& out,
                              const FrameDone& done) {
    std::vector<Loss> losses;
    const std::string error = interchange::WriteGltf(takes, form, out, done, losses);
    if (!error.empty()) throw Failure(arguments.file + ": " + error);
    return losses;
}

// A kind of file, known by the ending of its name.
struct Format {
    std::string_view ending;  // in small letters
    bool isBvh;               // it holds one take, in units and an order of turns to be chosen
    std::size_t passes;       // how often `write` tells that a frame is done

    // Gives a Loss for each take. The stream's own state tells whether it could be written.
    std::vector<Loss> (*write)(const std::vector<MovingTake>& takes,
                               const ExportArguments& arguments, std::ostream& out,
                               const FrameDone& done);
};

constexpr std::array kFormats = {
    Format{".bvh", true, interchange::kBvhPasses, &WriteAsBvh},
    Format{".glb", false, 1, &WriteAsGltf<GltfForm::kBinary>},
    Format{".gltf", false, 1, &WriteAsGltf<GltfForm::kText>},
};

std::vector<std::string> Endings() {
    std::vector<std::string> endings;
    for (const Format& format : kFormats)
        endings.emplace_back(format.ending);
    return endings;
}

struct ExportedTake {
    const interchange::Take* take;
    Loss loss;
};

struct ExportResult {
    std::string scene;
    std::vector<ExportedTake> takes;
    std::vector<std::string> complaints;
    std::string saved;
};

void PrintForPerson(std::ostream& out, const ExportResult& result) {
    constexpr double kMillimetres = 1000;
    constexpr double kSeenMetres = 1e-7;
    constexpr std::size_t kMostLosses = 8;  // that a person reads through
    for (const auto& [take, loss] : result.takes) {
        out << "Take " << InTable(take->name) << ": " << Counted(take->nodes.size(), "node") << ", "
            << Counted(take->frameCount, "frame") << " at " << 1 / take->frameSeconds
            << " a second (" << Rounded(take->startSeconds, 3) << " s to "
            << Rounded(take->EndSeconds(), 3) << " s)\n";
        if (loss.metres >= kSeenMetres)
            out << "Furthest from where it was: " << Rounded(loss.metres * kMillimetres, 4)
                << " mm (" << InTable(loss.node) << " at " << Rounded(loss.seconds, 3) << " s)\n";
        for (std::size_t i = 0; i < std::min(loss.words.size(), kMostLosses); ++i)
            out << "Not in the file: " << InTable(loss.words[i]) << '\n';
        if (loss.words.size() > kMostLosses)
            out << "Not in the file: " << loss.words.size() - kMostLosses
                << " more, which --json tells\n";
    }
    PrintEach(out, kComplaint, result.complaints);
    TellSaved(out);
}

void PrintForProgram(std::ostream& out, const ExportResult& result) {
    nlohmann::ordered_json takes = nlohmann::ordered_json::array();
    for (const auto& [take, loss] : result.takes)
        takes.push_back({{"name", take->name},
                         {"nodes", take->nodes.size()},
                         {"frames", take->frameCount},
                         {"frameSeconds", take->frameSeconds},
                         {"startSeconds", take->startSeconds},
                         {"endSeconds", take->EndSeconds()},
                         {"furthestMetres", loss.metres},
                         {"furthestNode", loss.node},
                         {"furthestAtSeconds", loss.seconds},
                         {"notInTheFile", loss.words}});
    PrintJson(out, {{"scene", result.scene},
                    {"takes", takes},
                    {"complaints", result.complaints},
                    {"saved", result.saved}});
}

// Of the takes the one that has joints.
void LeaveOneForBvh(const std::string& scene, ChosenTakes& takes) {
    const std::string names = NamesOf(takes);
    std::erase_if(takes,
                  [](const auto& chosen) { return interchange::JointsOf(chosen->take).empty(); });
    if (takes.empty())
        throw Failure(scene + ": in " + names + " nothing moves that a .bvh file has room for");
    if (takes.size() > 1)
        Refuse(scene + ": of several takes (" + NamesOf(takes) +
               ") a .bvh file holds one, which --take names");
}

// Frames of another length need not reach to the end of the take.
void TellLostEnd(const ChosenTake& chosen, Loss& loss) {
    constexpr double kRounding = 1e-5;  // seconds
    const double lost = chosen.asRecorded.EndSeconds() - chosen.take.EndSeconds();
    if (lost > kRounding)
        loss.words.push_back("the last " + Rounded(lost, 4) + " s, which are no whole frame");
}

std::vector<Loss> Write(const Format& format, const ExportArguments& arguments,
                        ChosenTakes& chosen) {
    std::vector<Loss> losses;
    const auto write = [&](const std::vector<MovingTake>& takes, std::ostream& out,
                           const FrameDone& done) {
        losses = format.write(takes, arguments, out, done);
    };
    SaveTakes(arguments.file, chosen, {"Exporting", format.passes, write});
    for (std::size_t i = 0; i < chosen.size(); ++i)
        TellLostEnd(*chosen[i], losses[i]);
    return losses;
}

// With other units the numbers of a file would be too long, or none.
void CheckUnit(double metres) {
    if (metres < 1e-6 || metres > 1e6)
        Refuse("--scale: " + Plain(metres) + " is not from 0.000001 to 1,000,000");
}

void RunExport(const ExportArguments& arguments) {
    const Format& format = kFormats[NeedEnding({kOutput, arguments.file}, Endings())];
    if (!format.isBvh)
        for (const CLI::Option* const option : {arguments.scale, arguments.order})
            if (option->count() > 0)
                Refuse(option->get_name() + " says nothing of a " + std::string(format.ending) +
                       " file");
    CheckUnit(arguments.bvh.metresPerUnit);
    CheckTakeChoice(arguments.takes);
    KeepApart({{"SCENE", arguments.scene}}, {{kOutput, arguments.file}});
    ExpectFile(arguments.file);
    CoreStage stage(arguments.guests);
    stage.Open(arguments.scene);
    TakeChoice choice = arguments.takes;
    choice.keepsEnd = !format.isBvh;
    ChosenTakes chosen = TakesOfStage(stage, arguments.scene, choice);
    if (format.isBvh) LeaveOneForBvh(arguments.scene, chosen);
    const std::vector<Loss> losses = Write(format, arguments, chosen);
    ExportResult result{.scene = arguments.scene, .takes{}, .complaints{}, .saved = arguments.file};
    for (std::size_t i = 0; i < chosen.size(); ++i)
        result.takes.push_back({&chosen[i]->take, losses[i]});
    result.complaints = stage.TakeNewsInOne().complaints;
    Print(std::cout, result, arguments.audience);
}

void ReadOrder(const std::string& text, BvhChoice& choice) {
    if (std::ranges::find(interchange::kTurnOrders, text) == interchange::kTurnOrders.end())
        Refuse("--order: " + text + " is not X, Y and Z, each once, as in ZXY");
    choice.order = text;
}

}  // namespace

void AddExportVerb(CLI::App& app) {
    const auto arguments = std::make_shared<ExportArguments>();
    CLI::App* verb =
        AddVerb(app, kTakingAlong, "export", "Write takes into a file for other programs.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddOutput(*verb, "", arguments->file,
              "The file, of the kind that its name ends in: .bvh, .glb, .gltf")
        ->required();
    AddTakeChoice(*verb, arguments->takes);
    arguments->scale =
        AddSize(*verb, "--scale", arguments->bvh.metresPerUnit, "Metres in a unit of a .bvh file")
            ->capture_default_str();
    arguments->order =
        AddRead(*verb, "--order", "ORDER",
                "In which a .bvh file holds the turns of a joint, the outermost "
                "one first",
                [arguments](const std::string& text) { ReadOrder(text, arguments->bvh); })
            ->default_str(arguments->bvh.order);
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "export walk.scene -o walk.bvh");
    verb->callback([arguments] { RunExport(*arguments); });
}

}  // namespace headless
