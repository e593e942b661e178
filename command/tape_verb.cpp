#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/tape_print.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "platform/interrupt.h"
#include "platform/whole_file.h"
#include "recorder/stream/notes.h"
#include "recorder/tape/anonymise.h"
#include "recorder/tape/compare_tapes.h"
#include "recorder/tape/tape_summary.h"

namespace headless {
namespace {

using Json = nlohmann::ordered_json;
using recorder::SessionSummary;
using recorder::TapeContents;
using recorder::TapeSession;

TapeContents Read(const std::string& tape, int status = kFailed) {
    return OrRefuse([&] { return recorder::ReadTape(tape); }, status);
}

// info

struct TapeInfo {
    TapeContents tape;
    std::vector<SessionSummary> sessions;
};

std::string StateOf(const TapeSession& session) {
    std::string state = session.isClosed ? "ended" : "has no end";
    if (!session.isWhole) state += ", not all of it is there";
    return state;
}

void PrintScenes(std::ostream& out, const SessionSummary& summary) {
    for (const recorder::SceneNote& scene : summary.scenes) {
        out << "  " << recorder::InSeconds(scene.milliseconds) << " s: ";
        if (scene.word == recorder::note::kNew)
            out << "emptied the scene\n";
        else
            out << scene.word << ' ' << InTable(scene.path) << " (" << InTable(scene.digest)
                << ")\n";
    }
}

void PrintWork(std::ostream& out, const SessionSummary& summary) {
    if (summary.groupsSince == 0 && !summary.hasOpenGroup) return;
    out << "  In no scene: "
        << Counted(static_cast<std::size_t>(summary.groupsSince), "undo group");
    if (summary.hasOpenGroup) out << " and one that was open";
    out << '\n';
}

void PrintSession(std::ostream& out, const TapeSession& session, const SessionSummary& summary) {
    if (summary.moment.empty())
        out << "its beginning was dropped";
    else
        out << InTable(summary.moment) << " UTC, " << InTable(summary.platform) << ", interface "
            << summary.interface << ", Core " << InTable(summary.core) << ", recorded by "
            << InTable(summary.by);
    out << "; " << StateOf(session) << "\n  "
        << Counted(static_cast<std::size_t>(summary.calls), "call") << " in "
        << recorder::InSeconds(summary.milliseconds) << " s, "
        << Counted(static_cast<std::size_t>(summary.groups), "undo group") << ", "
        << Counted(static_cast<std::size_t>(summary.takes), "take");
    if (summary.unanswered > 0)
        out << ", " << Counted(static_cast<std::size_t>(summary.unanswered), "call")
            << " without an answer";
    out << '\n';
    PrintScenes(out, summary);
    PrintWork(out, summary);
}

void PrintForPerson(std::ostream& out, const TapeInfo& info) {
    out << InTable(info.tape.path) << ": " << Counted(info.sessions.size(), "session") << ", "
        << Counted(static_cast<std::size_t>(info.tape.bytes), "byte") << '\n';
    for (std::size_t i = 0; i < info.sessions.size(); ++i) {
        out << "Session " << i + 1 << ": ";
        PrintSession(out, info.tape.sessions[i], info.sessions[i]);
    }
    PrintEach(out, "Damage: ", info.tape.damages);
}

Json JsonOf(const TapeSession& session, const SessionSummary& summary) {
    Json scenes = Json::array();
    for (const recorder::SceneNote& scene : summary.scenes)
        scenes.push_back({{"what", scene.word},
                          {"seconds", scene.milliseconds / 1000.0},
                          {"digest", scene.digest},
                          {"path", scene.path}});
    return {{"moment", summary.moment},
            {"platform", summary.platform},
            {"interface", summary.interface},
            {"core", summary.core},
            {"recordedBy", summary.by},
            {"isClosed", session.isClosed},
            {"isWhole", session.isWhole},
            {"seconds", summary.milliseconds / 1000.0},
            {"calls", summary.calls},
            {"unanswered", summary.unanswered},
            {"undoGroups", summary.groups},
            {"takes", summary.takes},
            {"scenes", scenes},
            {"undoGroupsInNoScene", summary.groupsSince},
            {"hasOpenGroup", summary.hasOpenGroup}};
}

void PrintForProgram(std::ostream& out, const TapeInfo& info) {
    Json sessions = Json::array();
    for (std::size_t i = 0; i < info.sessions.size(); ++i)
        sessions.push_back(JsonOf(info.tape.sessions[i], info.sessions[i]));
    PrintJson(out, {{"tape", info.tape.path},
                    {"bytes", info.tape.bytes},
                    {"sessions", sessions},
                    {"damages", info.tape.damages}});
}

void AddInfo(CLI::App& app) {
    struct Arguments {
        std::string tape;
        Audience audience = Audience::kPerson;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const verb =
        AddVerb(app, kTaping, "tape info",
                "Tell what a tape holds. Each session is told with its calls, its scenes, and what "
                "of its work is in none of them.");
    AddTape(*verb, arguments->tape);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "tape info walk.tape");
    verb->callback([arguments] {
        TapeInfo info{.tape = Read(arguments->tape), .sessions = {}};
        for (const TapeSession& session : info.tape.sessions)
            info.sessions.push_back(recorder::Summarise(session));
        Print(std::cout, info, arguments->audience);
    });
}

// print

struct PrintArguments {
    std::string tape;
    std::vector<std::string> nodes;
    std::vector<std::string> operations;
    double from = 0;
    double to = std::numeric_limits<float>::max();
    std::optional<int> session;
    Audience audience = Audience::kPerson;
};

void CheckOperations(const std::vector<std::string>& names) {
    std::vector<std::string> known;
    for (const recorder::OperationRow& row : recorder::kOperations)
        known.emplace_back(row.name);
    for (const std::string& name : names)
        if (std::ranges::find(known, name) == known.end())
            Refuse("there is no operation \"" + name + '"' + TellNearest(name, known));
}

bool IsWanted(const PrintArguments& arguments, const SessionTeller& teller,
              const recorder::Record& record, std::size_t place) {
    const bool isCall = record.head.kind == recorder::RecordKind::kCall;
    const double seconds = record.head.milliseconds / 1000.0;
    if (seconds < arguments.from || seconds > arguments.to) return false;
    if (!arguments.operations.empty() &&
        (!isCall ||
         std::ranges::find(arguments.operations, recorder::RowOf(record.head.operation).name) ==
             arguments.operations.end()))
        return false;
    return arguments.nodes.empty() ||
           std::ranges::any_of(arguments.nodes, [&](const std::string& node) {
               return teller.IsAbout(place, node);
           });
}

void PrintRecords(std::ostream& out, const TapeSession& session, const PrintArguments& arguments) {
    SessionTeller teller(session);
    for (std::size_t place = 0; place < session.records.size(); ++place) {
        teller.GoTo(place);
        if (!IsWanted(arguments, teller, session.records[place], place)) continue;
        if (arguments.audience == Audience::kProgram) {
            const Json object = teller.JsonOf(place);
            if (!object.is_null()) PrintJsonLine(out, object);
        } else if (const std::string line = teller.Line(place); !line.empty()) {
            out << line << '\n';
        }
    }
}

void RunPrint(const PrintArguments& arguments) {
    CheckOperations(arguments.operations);
    const TapeContents tape = Read(arguments.tape);
    const auto sessions = static_cast<int>(tape.sessions.size());
    if (arguments.session) CheckRange("--session", *arguments.session, {1, sessions});
    for (int number = 1; number <= sessions; ++number) {
        if (number != arguments.session.value_or(number)) continue;
        const TapeSession& session = tape.sessions[static_cast<std::size_t>(number - 1)];
        if (arguments.audience == Audience::kPerson) {
            std::cout << "Session " << number << ": ";
            PrintSession(std::cout, session, recorder::Summarise(session));
        }
        PrintRecords(std::cout, session, arguments);
    }
}

void AddPrint(CLI::App& app) {
    const auto arguments = std::make_shared<PrintArguments>();
    CLI::App* const verb =
        AddVerb(app, kTaping, "tape print",
                "Print the calls on a tape, a line each. A call stands further to the right the "
                "more calls it was made in, with what came of it behind it.");
    AddTape(*verb, arguments->tape);
    AddNodes(*verb, arguments->nodes, "The name of a node as it is printed");
    verb->add_option("--operation", arguments->operations,
                     "The name of an operation; all if none is named")
        ->expected(1)
        ->take_all()
        ->type_name("NAME");
    AddNumber(*verb, "--from", arguments->from, "Nothing before so many seconds");
    AddNumber(*verb, "--to", arguments->to, "Nothing after so many seconds");
    AddWholeNumber(*verb, "--session", arguments->session,
                   "This session alone; the first one is 1");
    verb->add_flag_callback(
            "--json", [arguments] { arguments->audience = Audience::kProgram; },
            "Print each as a JSON object in a line of its own")
        ->disable_flag_override();
    AddExample(*verb, "tape print walk.tape --operation SetWorldTransform");
    verb->callback([arguments] { RunPrint(*arguments); });
}

// diff

struct TapeComparison {
    TapeContents first;
    TapeContents second;
    std::optional<recorder::TapeDifference> difference;
};

// What stands at a place of a tape; an answer is told with its call.
std::string LineAt(const TapeContents& tape, std::size_t session, std::size_t place) {
    if (session >= tape.sessions.size()) return "there is no such session";
    const std::vector<recorder::Record>& records = tape.sessions[session].records;
    if (place == records.size()) return "there is nothing more";
    SessionTeller teller(tape.sessions[session]);
    const std::uint64_t call = records[place].head.call;
    while (place > 0 && records[place].head.kind != recorder::RecordKind::kCall &&
           records[place - 1].head.call >= call)
        --place;
    teller.GoTo(place);
    const std::string line = teller.Line(place);
    return line.empty() ? teller.JsonOf(place).dump() : line;
}

void PrintForPerson(std::ostream& out, const TapeComparison& comparison) {
    if (!comparison.difference) return;
    const auto& [session, first, second] = *comparison.difference;
    out << "Session " << session + 1 << ":\n"
        << InTable(comparison.first.path) << ": " << LineAt(comparison.first, session, first)
        << '\n'
        << InTable(comparison.second.path) << ": " << LineAt(comparison.second, session, second)
        << '\n';
}

void PrintForProgram(std::ostream& out, const TapeComparison& comparison) {
    Json object = {{"equal", !comparison.difference}};
    if (comparison.difference) {
        const auto& [session, first, second] = *comparison.difference;
        object["session"] = session + 1;
        object["first"] = LineAt(comparison.first, session, first);
        object["second"] = LineAt(comparison.second, session, second);
    }
    PrintJson(out, object);
}

void AddDiff(CLI::App& app) {
    struct Arguments {
        std::string first;
        std::string second;
        Audience audience = Audience::kPerson;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const verb =
        AddVerb(app, kTaping, "tape diff",
                "Tell where two tapes first differ. Times, windows, and when and by whom they were "
                "recorded do not count. The exit status is 0 if they tell the same, 1 if they "
                "differ, 2 if they cannot be compared.");
    AddFile(*verb, "FIRST", arguments->first, "Tape")->required();
    AddFile(*verb, "SECOND", arguments->second, "Tape")->required();
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "tape diff walk.tape again.tape");
    verb->callback([arguments] {
        TapeComparison comparison{.first = Read(arguments->first, kNotCompared),
                                  .second = Read(arguments->second, kNotCompared),
                                  .difference = {}};
        comparison.difference = recorder::CompareTapes(comparison.first, comparison.second);
        Print(std::cout, comparison, arguments->audience);
        if (!std::cout.flush()) throw Failure(kOutputLost, kNotCompared);
        if (comparison.difference) throw Ended{kDifferent};
    });
}

// anonymise

void WriteWhole(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    ExpectFile(path);
    const platform::Interrupt interrupt;  // no half of it is left then
    platform::WholeFile file(path);
    std::string reason = file.Refusal();
    if (reason.empty()) {
        std::ofstream out(platform::FromNarrow(file.Path()), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        out.close();
        reason = out ? file.TakePlace() : "it cannot be written";
    }
    if (!reason.empty()) throw Failure(path + ": " + reason);
    NoteSaved(path);
}

void AddAnonymise(CLI::App& app) {
    struct Arguments {
        std::string tape;
        std::string out;
    };
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const verb =
        AddVerb(app, kTaping, "tape anonymise",
                "Write a tape on which other names and texts stand. They are as long as those "
                "before, and the same ones stand for the same; nobody can go back from them. All "
                "else is as it was.");
    AddTape(*verb, arguments->tape);
    AddOutput(*verb, "", arguments->out, "Where to write it")->required();
    AddExample(*verb, "tape anonymise walk.tape -o sent.tape");
    verb->callback([arguments] {
        KeepApart({{"TAPE", arguments->tape}}, {{kOutput, arguments->out}});
        WriteWhole(arguments->out, OrRefuse([&] { return recorder::Anonymised(arguments->tape); }));
        TellSaved(std::cout);
    });
}

}  // namespace

void AddTapeVerbs(CLI::App& app) {
    AddInfo(app);
    AddPrint(app);
    AddDiff(app);
    AddAnonymise(app);
}

}  // namespace headless
