#include <CLI/CLI.hpp>
#include <algorithm>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <span>
#include <sstream>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/output.h"
#include "command/tape_print.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "platform/interrupt.h"
#include "platform/narrow_path.h"
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
    if (info.sessions.empty() && info.tape.damages.empty())
        out << "Nothing has been recorded to it; --tape goes on with it\n";
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
        TapeInfo info{.tape = ReadTape(arguments->tape, kFailed, recorder::MayBeBlank::kYes),
                      .sessions = {}};
        for (const TapeSession& session : info.tape.sessions)
            info.sessions.push_back(recorder::Summarise(session));
        Print(std::cout, info, arguments->audience);
    });
}

// print

constexpr double kAnyTime = std::numeric_limits<float>::max();

struct PrintArguments {
    std::string tape;
    std::vector<std::string> nodes;
    std::vector<std::string> operations;
    double from = 0;
    double to = kAnyTime;
    std::optional<int> session;
    Audience audience = Audience::kPerson;

    bool IsChoosing() const {
        return !nodes.empty() || !operations.empty() || from > 0 || to < kAnyTime;
    }
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

// Gives how many.
std::size_t PrintRecords(std::ostream& out, const TapeSession& session,
                         const PrintArguments& arguments) {
    std::size_t printed = 0;
    SessionTeller teller(session);
    for (std::size_t place = 0; place < session.records.size(); ++place) {
        teller.GoTo(place);
        if (!IsWanted(arguments, teller, session.records[place], place)) continue;
        if (arguments.audience == Audience::kProgram) {
            const Json object = teller.JsonOf(place);
            if (object.is_null()) continue;
            PrintJsonLine(out, object);
        } else {
            const std::string line = teller.Line(place);
            if (line.empty()) continue;
            out << line << '\n';
        }
        ++printed;
    }
    return printed;
}

void RunPrint(const PrintArguments& arguments) {
    CheckOperations(arguments.operations);
    const TapeContents tape = ReadTapeOrRefuse(arguments.tape);
    const auto sessions = static_cast<int>(tape.sessions.size());
    std::size_t printed = 0;
    if (arguments.session) CheckRange("--session", *arguments.session, {1, sessions});
    for (int number = 1; number <= sessions; ++number) {
        if (number != arguments.session.value_or(number)) continue;
        const TapeSession& session = tape.sessions[static_cast<std::size_t>(number - 1)];
        if (arguments.audience == Audience::kPerson) {
            std::cout << "Session " << number << ": ";
            PrintSession(std::cout, session, recorder::Summarise(session));
        }
        printed += PrintRecords(std::cout, session, arguments);
    }
    if (printed == 0 && arguments.IsChoosing())
        throw Failure(arguments.tape + ": nothing on it is what was asked for");
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

// Where two first differ: the session, from 1 on, or 0 if they tell the same, and what each has
// there.
struct TapeComparison {
    std::string paths[2];
    std::size_t session = 0;
    std::string lines[2];
};

enum class Words { kFew, kAll };

// What stands at a place of a tape; an answer is told with its call.
std::string LineAt(const TapeContents& tape, std::size_t session, std::size_t place, Words words) {
    if (session >= tape.sessions.size()) return "there is no such session";
    const std::vector<recorder::Record>& records = tape.sessions[session].records;
    if (place == records.size()) return "there is nothing more";
    SessionTeller teller(tape.sessions[session]);
    const auto call = std::ranges::find_if(
        records.begin(), records.begin() + static_cast<std::ptrdiff_t>(place),
        [&](const recorder::Record& record) {
            return records[place].IsEnd() && record.head.kind == recorder::RecordKind::kCall &&
                   record.head.call == records[place].head.call;
        });
    place = static_cast<std::size_t>(call - records.begin());
    teller.GoTo(place);
    const std::string told = words == Words::kFew ? teller.Line(place) : "";
    if (!told.empty()) return told.substr(told.find_first_not_of(' '));
    if (records[place].IsEnd())
        return "the end of " + std::string(recorder::RowOf(records[place].head.operation).name) +
               ", whose beginning is not there";
    Json object = teller.JsonOf(place);
    object.erase("seconds");  // do not count
    std::ostringstream line;
    PrintJsonLine(line, std::move(object));
    return LinesOf(line.str()).front();
}

// Behind the time.
std::string_view WithoutTime(std::string_view line) {
    return line.substr(std::min(line.find("  "), line.size()));
}

// In few words two can look alike.
TapeComparison Compare(const std::string& first, const std::string& second) {
    const TapeContents one = ReadTapeOrRefuse(first, kNotCompared);
    const TapeContents other = ReadTapeOrRefuse(second, kNotCompared);
    TapeComparison comparison{.paths = {first, second}, .lines = {}};
    const auto progress = ProgressOn("Comparing", first);
    const auto difference =
        OrRefuse([&] { return recorder::CompareTapes(one, other, progress); }, kNotCompared);
    if (!difference) return comparison;
    comparison.session = difference->session + 1;
    auto& [line, otherLine] = comparison.lines;
    for (const Words words : {Words::kFew, Words::kAll}) {
        line = LineAt(one, difference->session, difference->first, words);
        otherLine = LineAt(other, difference->session, difference->second, words);
        if (WithoutTime(line) != WithoutTime(otherLine)) break;
    }
    Shorten(line, otherLine);
    return comparison;
}

void PrintForPerson(std::ostream& out, const TapeComparison& comparison) {
    if (comparison.session == 0) return;
    out << "Session " << comparison.session << ":\n";
    for (const int which : {0, 1})
        out << InTable(comparison.paths[which]) << ": " << comparison.lines[which] << '\n';
}

void PrintForProgram(std::ostream& out, const TapeComparison& comparison) {
    Json object = {{"equal", comparison.session == 0}};
    if (comparison.session != 0) {
        object["session"] = comparison.session;
        object["first"] = comparison.lines[0];
        object["second"] = comparison.lines[1];
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
        const TapeComparison comparison = Compare(arguments->first, arguments->second);
        Print(std::cout, comparison, arguments->audience);
        if (!std::cout.flush()) throw Failure(kOutputLost, kNotCompared);
        if (comparison.session != 0) throw Ended{kDifferent};
    });
}

// anonymise

void WriteBlocks(const std::string& path, std::span<const std::uint8_t> bytes, std::ostream& out) {
    constexpr std::size_t kBlock = std::size_t{1} << 24;
    LongWork writing("Writing " + path, bytes.size() / kBlock + 1);
    for (std::span<const std::uint8_t> block; !bytes.empty(); bytes = bytes.subspan(block.size())) {
        block = bytes.first(std::min(bytes.size(), kBlock));
        out.write(reinterpret_cast<const char*>(block.data()),
                  static_cast<std::streamsize>(block.size()));
        writing.Advance();
    }
}

void WriteWhole(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    platform::WholeFile file(path);
    std::string reason = file.Refusal();
    if (reason.empty()) {
        std::ofstream out(platform::FromNarrow(file.Path()), std::ios::binary);
        WriteBlocks(path, bytes, out);
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
        ExpectFile(arguments->out);
        const platform::Interrupt interrupt;  // no half of it is left then
        WriteWhole(arguments->out, OrRefuse([&] {
                       return recorder::Anonymised(arguments->tape,
                                                   ProgressOn("Reading", arguments->tape));
                   }));
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
