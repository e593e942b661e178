#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iomanip>
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

// A kind of file, known by the ending of its name.
struct Format {
    std::string_view ending;  // in small letters
    bool hasOneTake;
    bool isBvh;          // its units and its order of turns can be chosen
    std::size_t passes;  // how often `write` tells that a frame is done

    // Whether it has room for anything of the take.
    bool (*holds)(const interchange::Take& take);

    // Gives a Loss for each take. The stream's own state tells whether it could be written.
    std::vector<Loss> (*write)(const std::vector<MovingTake>& takes, const BvhChoice& choice,
                               std::ostream& out, const FrameDone& done);
};

bool HasJoints(const interchange::Take& take) {
    return !interchange::JointsOf(take).empty();
}

bool HasNodes(const interchange::Take& take) {
    return !take.nodes.empty();
}

std::vector<Loss> WriteAsBvh(const std::vector<MovingTake>& takes, const BvhChoice& choice,
                             std::ostream& out, const FrameDone& done) {
    const MovingTake& only = takes.front();
    return {interchange::WriteBvh(*only.take, *only.poses, choice, out, done)};
}

template <GltfForm form>
std::vector<Loss> WriteAsGltf(const std::vector<MovingTake>& takes, const BvhChoice&,
                              std::ostream& out, const FrameDone& done) {
    std::vector<Loss> losses;
    const std::string error = interchange::WriteGltf(takes, form, out, done, losses);
    if (!error.empty()) throw Failure(error);
    return losses;
}

constexpr std::array kFormats = {
    Format{".bvh", true, true, interchange::kBvhPasses, &HasJoints, &WriteAsBvh},
    Format{".glb", false, false, 1, &HasNodes, &WriteAsGltf<GltfForm::kBinary>},
    Format{".gltf", false, false, 1, &HasNodes, &WriteAsGltf<GltfForm::kText>},
};

std::string Endings() {
    std::string endings;
    for (const Format& format : kFormats)
        (endings += endings.empty() ? "" : ", ") += format.ending;
    return endings;
}

const Format& FormatOf(const std::string& file) {
    std::string small = file;
    std::ranges::transform(small, small.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    const auto* const format = std::ranges::find_if(
        kFormats, [&](const Format& known) { return small.ends_with(known.ending); });
    if (format == kFormats.end())
        Refuse(std::string(kOutput) + ": " + file +
               " does not end as a kind of file that is known: " + Endings());
    return *format;
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

double SecondsOf(const interchange::Take& take) {
    return static_cast<double>(take.frameCount) * take.frameSeconds;
}

void PrintForPerson(std::ostream& out, const ExportResult& result) {
    constexpr double kMillimetres = 1000;
    constexpr std::size_t kMostLosses = 8;  // that a person reads through
    for (const auto& [take, loss] : result.takes) {
        out << "Take " << InTable(take->name) << ": " << Counted(take->nodes.size(), "node") << ", "
            << Counted(take->frameCount, "frame") << " of " << Plain(take->frameSeconds) << " s ("
            << std::fixed << std::setprecision(2) << SecondsOf(*take) << " s, from "
            << take->startSeconds << " s on)\n";
        if (loss.metres > 0)
            out << "Furthest from where it was: " << std::setprecision(4)
                << loss.metres * kMillimetres << " mm (" << InTable(loss.node) << " at "
                << std::setprecision(2) << loss.seconds << " s)\n";
        out << std::defaultfloat;
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
                         {"seconds", SecondsOf(*take)},
                         {"furthestMetres", loss.metres},
                         {"furthestNode", loss.node},
                         {"furthestAtSeconds", loss.seconds},
                         {"notInTheFile", loss.words}});
    PrintJson(out, {{"scene", result.scene},
                    {"takes", takes},
                    {"complaints", result.complaints},
                    {"saved", result.saved}});
}

std::string NamesOf(const ChosenTakes& takes) {
    std::string names;
    for (const std::unique_ptr<ChosenTake>& chosen : takes)
        names += (names.empty() ? "" : ", ") + Quoted(chosen->take.name);
    return names;
}

// Those of the takes that go into the file.
ChosenTakes TakesFor(const Format& format, const ExportArguments& arguments, ChosenTakes takes) {
    const std::string kind = std::string(format.ending) + " file";
    const std::string names = NamesOf(takes);
    std::erase_if(takes, [&](const auto& chosen) { return !format.holds(chosen->take); });
    if (takes.empty())
        throw Failure(arguments.scene + ": in " + names + " nothing moves that a " + kind +
                      " has room for");
    if (format.hasOneTake && takes.size() > 1)
        Refuse(arguments.scene + ": of several takes (" + NamesOf(takes) + ") a " + kind +
               " holds one, which --take names");
    return takes;
}

std::vector<Loss> Write(const Format& format, const ExportArguments& arguments,
                        ChosenTakes& chosen) {
    std::vector<Loss> losses;
    const auto write = [&](const std::vector<MovingTake>& takes, std::ostream& out,
                           const FrameDone& done) {
        losses = format.write(takes, arguments.bvh, out, done);
    };
    SaveTakes(arguments.file, chosen, {"Exporting", format.passes, write});
    return losses;
}

void RunExport(const ExportArguments& arguments) {
    const Format& format = FormatOf(arguments.file);
    if (!format.isBvh)
        for (const CLI::Option* const option : {arguments.scale, arguments.order})
            if (option->count() > 0)
                Refuse(option->get_name() + " says nothing of a " + std::string(format.ending) +
                       " file");
    CheckTakeChoice(arguments.takes);
    KeepApart({{"SCENE", arguments.scene}}, {{kOutput, arguments.file}});
    ExpectFile(arguments.file);
    CoreStage stage(arguments.guests);
    stage.Open(arguments.scene);
    ChosenTakes chosen =
        TakesFor(format, arguments, TakesOfStage(stage, arguments.scene, arguments.takes));
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
              "The file, of the kind that its name ends in: " + Endings())
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
