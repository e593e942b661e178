#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/output.h"
#include "command/steps.h"
#include "command/tape_print.h"
#include "command/tape_values.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "platform/interrupt.h"
#include "player/host_settings.h"
#include "player/replay/replay.h"
#include "recorder/tape/read_tape.h"
#include "tvl/panel.h"

namespace headless {
namespace {

struct ReplayArguments {
    std::string tape;
    std::optional<int> session;
    std::string plugin;
    Audience audience = Audience::kPerson;
};

struct ReplayResult {
    std::string tape;
    std::size_t sessions = 0;
    std::size_t calls = 0;
    std::size_t steps = 0;
    std::vector<std::string> told;  // each step, as it was written, with how it was known
    std::optional<player::Verdict> verdict;

    // Of that, which is in the session that was played last.
    std::size_t session = 0;  // from 1 on
    std::uint64_t call = 0;   // 0 behind the last one
    std::uint32_t milliseconds = 0;
    std::string line;  // as `tape print` has it
    std::string expected;
    std::string came;
};

// Sessions of one host, played beside a host of this one's.
class Performance {
  public:
    Performance(const ReplayArguments& arguments, player::Replay& replay,
                player::ReplayScenes& scenes, const SessionSettings& settings)
        : replay_(replay),
          scenes_(scenes),
          stage_({.inPlace = &replay, .plugin = arguments.plugin}, settings),
          scene_{stage_, {}} {}

    void Perform(std::vector<std::string>& told) {
        while (const auto step = Next()) {
            told.push_back(step->text + (step->isInferred ? "  (inferred)" : ""));
            try {
                do {
                    Do(*step);
                } while (replay_.WasDone());
            } catch (const Failure& failure) {
                replay_.Failed(failure.what(), failure.Status() != kWrongUsage);
            }
            LookAt();
        }
        stage_.ShutDown();
        stage_.TakeNews();
    }

  private:
    std::optional<player::Replay::Step> Next() {
        std::optional<player::Replay::Step> step = replay_.NextStep();
        EndIfStopped("after " + Counted(replay_.Calls(), "call") + ", whose answers were the same");
        return step;
    }

    void Do(const player::Replay::Step& given) {
        Step step = StepsOfOptions({given.text}).front();
        const StepFile use = step.kind->file;
        if (use == StepFile::kDrawn) return;
        if (use == StepFile::kSaved)
            step.words.texts.front() = scenes_.ToWrite(step.File());
        else if (use != StepFile::kNone && (given.isWithoutScene || !FindScene(given, step)))
            return;
        Session& host = stage_.Host();
        if (step.kind->name == "press" && !host.IsUtilityOpen(TVL::kPanelUtility))
            host.OpenUtility(TVL::kPanelUtility);
        step.kind->act(scene_, step.words);
    }

    bool FindScene(const player::Replay::Step& given, Step& step) {
        const std::string here = scenes_.ToRead(given.digest, step.File());
        if (here.empty())
            replay_.NoScene(step.File());
        else
            step.words.texts.front() = here;
        return !here.empty();
    }

    // What a step brought about besides is no business of a replay's, but for message boxes, which
    // later ones can ask for.
    void LookAt() {
        for (std::string& box : stage_.TakeNews().boxes)
            scene_.boxes.push_back(std::move(box));
    }

    player::Replay& replay_;
    player::ReplayScenes& scenes_;
    CoreStage stage_;
    StepScene scene_;
};

recorder::TapeContents Read(const ReplayArguments& arguments) {
    recorder::TapeContents tape = ReadTapeOrRefuse(arguments.tape, kNotCompared);
    const int last = static_cast<int>(tape.sessions.size());
    if (arguments.session) CheckRange("--session", *arguments.session, {1, last});
    return tape;
}

std::string ToldText(const player::Told& told, const recorder::ObjectNames& names) {
    if (told.kind == recorder::RecordKind::kNote) return told.words;
    recorder::RecordHead head;
    head.kind = told.kind;
    head.operation = told.operation;
    recorder::ValueReader values{std::span(told.values)};
    std::string text;
    for (const char letter : recorder::LettersOf(head))
        (text += text.empty() ? "" : ", ") +=
            letter == 't' ? values.Tree().Write() : ValueText(values, letter, names);
    const std::string name(recorder::RowOf(told.operation).name);
    if (told.kind == recorder::RecordKind::kCall) return "the call " + name + '(' + text + ')';
    if (told.kind == recorder::RecordKind::kThrown) return "thrown: " + text;
    return text.empty() ? "the answer of " + name : text;
}

void Tell(ReplayResult& result, const recorder::TapeSession& session) {
    SessionTeller teller(session);
    teller.GoTo(std::min(result.verdict->place, session.records.size() - 1));
    if (result.verdict->place < session.records.size()) {
        const recorder::RecordHead& head = session.records[result.verdict->place].head;
        result.call = head.call;
        result.milliseconds = head.milliseconds;
        result.line = teller.Line(result.verdict->place);
        result.line.erase(0, result.line.find_first_not_of(' '));
    }
    result.expected = ToldText(result.verdict->expected, teller.Names());
    result.came = ToldText(result.verdict->came, teller.Names());
    Shorten(result.expected, result.came);
}

// A Core that refused on the tape refuses here as well, and there is no more to play.
void Perform(const ReplayArguments& arguments, player::Replay& replay, player::ReplayScenes& scenes,
             const SessionSettings& settings, std::vector<std::string>& told) try {
    Performance(arguments, replay, scenes, settings).Perform(told);
} catch (const Failure& failure) {
    if (failure.Status() == kStopped) throw;
    if (replay.Calls() == 0) throw Failure(failure.what(), kNotCompared);
}

// All sessions, or one with those of the same host that came before it.
ReplayResult Play(const ReplayArguments& arguments) {
    const platform::Interrupt interrupt;  // no folder is left then
    const recorder::TapeContents tape = Read(arguments);
    const PassingFolder folder(FolderForPassing(), "lumiset-replay");  // for scenes that it saves
    ReplayResult result;
    result.tape = arguments.tape;
    const auto wanted = static_cast<std::size_t>(arguments.session.value_or(0));
    std::size_t first = 0;
    while (first < tape.sessions.size() && !result.verdict && (wanted == 0 || first < wanted)) {
        player::ReplayScenes scenes(tape, folder.Path());
        player::Replay replay(tape, first, scenes, ProgressOn("Replaying", arguments.tape));
        const std::size_t begin = std::exchange(first, replay.End());
        if (wanted > first) continue;
        Perform(arguments, replay, scenes, player::SettingsOf(tape.sessions[begin]), result.told);
        result.calls += replay.Calls();
        result.steps += replay.Steps();
        result.sessions += replay.Played();
        if (!replay.Over()) continue;
        result.verdict = *replay.Over();
        result.session = begin + replay.Played();
        Tell(result, tape.sessions[result.session - 1]);
    }
    return result;
}

void PrintForPerson(std::ostream& out, const ReplayResult& result) {
    const std::string done = Counted(result.calls, "call") + " and " +
                             Counted(result.steps, "step") + " of the host in " +
                             Counted(result.sessions, "session");
    if (!result.verdict) {
        out << result.tape << ": all answers were the same: " << done << '\n';
        return;
    }
    for (const std::string& step : result.told)
        out << "Step: " << InTable(step) << '\n';
    out << result.tape << ": after " << done << ", in session " << result.session;
    if (result.call > 0) out << " at call " << result.call;
    out << (result.line.empty() ? "" : ":\n  " + result.line) << '\n';
    if (result.verdict->differs)
        out << "  Expected: " << InTable(result.expected)
            << "\n  Came:     " << InTable(result.came) << '\n';
    else
        out << "  It cannot be told how to go on: " << InTable(result.came) << '\n';
}

void PrintForProgram(std::ostream& out, const ReplayResult& result) {
    nlohmann::ordered_json object{{"tape", result.tape},
                                  {"same", !result.verdict},
                                  {"sessions", result.sessions},
                                  {"calls", result.calls},
                                  {"steps", result.told}};
    if (const auto& verdict = result.verdict) {
        object["session"] = result.session;
        object["call"] = result.call;
        object["milliseconds"] = result.milliseconds;
        object["line"] = result.line;
        object["differs"] = verdict->differs;
        if (verdict->differs) object["expected"] = result.expected;
        object[verdict->differs ? "came" : "reason"] = result.came;
    }
    PrintJson(out, object);
}

void RunReplay(const ReplayArguments& arguments) {
    const ReplayResult result = Play(arguments);
    Print(std::cout, result, arguments.audience);
    if (!std::cout.flush()) throw Failure(kOutputLost, kNotCompared);
    if (result.verdict) throw Ended{result.verdict->differs ? kDifferent : kNotCompared};
}

}  // namespace

void AddTapeReplayVerb(CLI::App& app) {
    const auto arguments = std::make_shared<ReplayArguments>();
    CLI::App* verb = AddVerb(
        app, kTaping, "tape replay",
        "Play the Core's side of a tape against the plug-in, and what the host did beside, up to "
        "the first answer that differs. The exit status is 0 if all answers were the same, 1 if "
        "one differs, 2 if it cannot be told how to go on.");
    AddTape(*verb, arguments->tape);
    AddWholeNumber(*verb, "--session", arguments->session,
                   "Play this one alone, counted from 1, with those ahead of it in the same host");
    AddFile(*verb, "--plugin", arguments->plugin, "The plug-in; else the one beside the program");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "tape replay walk.tape");
    verb->callback([arguments] { RunReplay(*arguments); });
}

}  // namespace headless
