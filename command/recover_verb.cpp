#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/tape_print.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "player/recovery/recover.h"
#include "recorder/tape/read_tape.h"

namespace headless {
namespace {

struct RecoverArguments {
    std::string tape;
    player::RecoveryChoice choice;
    std::optional<int> session;
    std::optional<int> after;
    bool takesOpen = false;
    std::string output;
    Audience audience = Audience::kPerson;
};

// What came of it all.
struct RecoverResult {
    std::string tape;
    player::RecoveryReport report;
    std::string saved;
    StageNews news;
};

std::string WordOf(player::Fate fate) {
    switch (fate) {
        case player::Fate::kFinished:
            return "finished";
        case player::Fate::kOpen:
            return "open at the end";
        case player::Fate::kCancelled:
            return "cancelled";
        case player::Fate::kUndone:
            return "undone";
    }
    return {};
}

void PrintWork(std::ostream& out, const player::RecoveredWork& work) {
    const player::WorkGroup& group = work.group;
    out << (group.name.empty() ? std::string("Outside of any group") : Quoted(group.name)) << ": "
        << Counted(group.changes, "change") << " of " << Counted(work.nodes.size(), "node");
    if (group.samples > 0)
        out << ", " << Counted(group.samples, "sample") << " at "
            << Counted(group.moments.size(), "moment") << " from " << Plain(*group.moments.begin())
            << " s to " << Plain(*group.moments.rbegin()) << " s";
    if (group.isBegunBefore) out << ", what the scene lacked of it";
    if (group.fate == player::Fate::kOpen) out << ", open at the end";
}

void PrintNames(std::ostream& out, std::string_view title, const std::vector<std::string>& names) {
    for (const std::string& name : names)
        out << (&name == &names.front() ? title : ", ") << InTable(name);
    if (!names.empty()) out << '\n';
}

void PrintForPerson(std::ostream& out, const RecoverResult& result) {
    const player::RecoveryReport& report = result.report;
    out << result.tape << ", session " << report.session << ", all behind " << InTable(report.base)
        << '\n';
    if (!report.step.empty()) out << report.step << ", as one step\n";
    for (const player::RecoveredWork& work : report.recovered) {
        PrintWork(out, work);
        PrintNames(out, ": ", work.nodes);
    }
    for (const player::RecoveredWork& work : report.left) {
        out << "Not brought back: ";
        PrintWork(out, work);
        if (work.group.fate == player::Fate::kOpen)
            out << "; --open-group brings it in as well\n";
        else
            out << ", since it was " << WordOf(work.group.fate) << '\n';
    }
    for (const std::string& line : report.overwritten)
        out << "Replaced: " << InTable(line) << '\n';
    for (const std::string& line : report.lost)
        out << "Not brought back: " << InTable(line) << '\n';
    if (report.hasLaterState) out << "The Core's state is the last one on the tape\n";
    PrintNames(out, "Plain nodes, since no state of the Core's names them: ", report.plainNodes);
    for (const player::UnsavedWork& other : report.others)
        out << "Session " << other.session << " holds unsaved work, too; if this scene lacks that: "
            << player::CommandFor(result.tape, other, result.saved) << '\n';
    PrintEach(out, kMessageBox, result.news.boxes);
    PrintEach(out, kComplaint, result.news.complaints);
    TellSaved(out);
}

nlohmann::ordered_json ToJson(const std::vector<player::RecoveredWork>& list) {
    auto array = nlohmann::ordered_json::array();
    for (const auto& [group, nodes] : list) {
        const std::set<double>& moments = group.moments;
        array.push_back({{"name", group.name},
                         {"fate", WordOf(group.fate)},
                         {"begunBefore", group.isBegunBefore},
                         {"changes", group.changes},
                         {"samples", group.samples},
                         {"moments", moments.size()},
                         {"firstSecond", moments.empty() ? 0.0 : *moments.begin()},
                         {"lastSecond", moments.empty() ? 0.0 : *moments.rbegin()},
                         {"nodes", nodes}});
    }
    return array;
}

nlohmann::ordered_json ToJson(const RecoverResult& result) {
    auto array = nlohmann::ordered_json::array();
    for (const player::UnsavedWork& other : result.report.others)
        array.push_back({{"session", other.session},
                         {"command", player::CommandFor(result.tape, other, result.saved)}});
    return array;
}

void PrintForProgram(std::ostream& out, const RecoverResult& result) {
    const player::RecoveryReport& report = result.report;
    PrintJson(out, {{"tape", result.tape},
                    {"session", report.session},
                    {"base", report.base},
                    {"step", report.step},
                    {"recovered", ToJson(report.recovered)},
                    {"left", ToJson(report.left)},
                    {"replaced", report.overwritten},
                    {"lost", report.lost},
                    {"laterState", report.hasLaterState},
                    {"plainNodes", report.plainNodes},
                    {"others", ToJson(result)},
                    {"boxes", result.news.boxes},
                    {"complaints", result.news.complaints},
                    {"saved", result.saved}});
}

Failure NothingLacks(const recorder::TapeContents& tape, const player::RecoveryReport& report) {
    std::string text = tape.path + ": session " + std::to_string(report.session) +
                       " holds nothing that the scene lacks";
    if (std::ranges::any_of(report.left, [](const player::RecoveredWork& work) {
            return work.group.fate == player::Fate::kOpen;
        }))
        text += ", but an open group: --open-group";
    if (tape.sessions.size() > 1) text += "; --session names another";
    return Failure(text);
}

player::RecoveryReport Perform(player::Recovery& recovery, Session& host, const std::string& tape) {
    const auto progress = ProgressOn("Recovering", tape);
    return OrRefuse([&] { return recovery.Perform(host, progress); });
}

void RunRecover(RecoverArguments& arguments) {
    player::RecoveryChoice& choice = arguments.choice;
    KeepApart({{"TAPE", arguments.tape}, {"--into", choice.scene}}, {{kOutput, arguments.output}});
    ExpectFile(arguments.output);
    if (arguments.takesOpen) choice.openGroups = player::OpenGroups::kTaken;
    const recorder::TapeContents tape =
        ReadTape(arguments.tape, kFailed, recorder::MayBeBlank::kNo);
    const auto take = [](const char* option, const std::optional<int>& said, Range range,
                         auto& to) {
        if (!said) return;
        CheckRange(option, *said, range);
        to = static_cast<std::uint64_t>(*said);
    };
    take("--session", arguments.session, {1, static_cast<int>(tape.sessions.size())},
         choice.session);
    take("--after", arguments.after, {0, std::numeric_limits<int>::max()}, choice.after);
    std::optional<player::Recovery> recovery;
    OrRefuse([&] { recovery.emplace(tape, choice); });
    GuestChoice guests;
    guests.inPlace = &recovery->Core();
    CoreStage stage(guests, recovery->Settings());
    stage.NeedCore();
    if (!choice.scene.empty()) stage.Open(choice.scene);
    RecoverResult result{
        arguments.tape, Perform(*recovery, stage.Host(), arguments.tape), arguments.output, {}};
    if (result.report.IsEmpty()) throw NothingLacks(tape, result.report);
    stage.Save(arguments.output);
    result.news = stage.TakeNewsInOne();
    std::ranges::copy(DamagesOf(tape), std::back_inserter(result.news.complaints));
    Print(std::cout, result, arguments.audience);
}

}  // namespace

void AddRecoverVerb(CLI::App& app) {
    const auto arguments = std::make_shared<RecoverArguments>();
    CLI::App* verb = AddVerb(
        app, kKeeping, "recover",
        "Bring back what a tape holds of work that was not saved when the host ended. All of it "
        "becomes one undo step in the scene that was saved last, which is known by its bytes; a "
        "Core claims its nodes as far as the state that it last gave names them, and the others "
        "are plain nodes with their motion. Tape and scene stay as they are.");
    AddFile(*verb, "TAPE", arguments->tape, "Tape of a session that ended without a save")
        ->required();
    AddFile(*verb, "--into", arguments->choice.scene,
            "Scene to bring it into; an empty one if not named");
    AddOutput(*verb, "", arguments->output, "Where to save the scene")->required();
    AddSwitch(*verb, "--open-group", arguments->takesOpen,
              "Bring in also the undo group that was open when everything ended");
    AddWholeNumber(*verb, "--session", arguments->session,
                   "Which session of the tape, from 1 on, if not the newest that knows the scene");
    AddWholeNumber(*verb, "--after", arguments->after,
                   "The call up to which the scene has everything, where that cannot be told");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "recover walk.tape -o recovered.scene");
    verb->callback([arguments] { RunRecover(*arguments); });
}

}  // namespace headless
