#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <ostream>
#include <system_error>

#include "command/checks/checks.h"
#include "command/exit_status.h"
#include "command/output.h"
#include "command/verb_texts.h"
#include "command/written_files.h"
#include "platform/child_process.h"
#include "platform/files.h"
#include "platform/interrupt.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "recorder/tape/read_tape.h"

// How a check is made, and what is left of it.
namespace headless {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

CheckStage::Place PlaceOf(const Check& check, const CheckOptions& options) {
    std::string name(check.name);
    if (check.isRandom) name += '-' + std::to_string(options.seed);
    return {options.folder, name};
}

std::vector<std::string> WordsAlone(const Check& check, const CheckOptions& options) {
    std::vector<std::string> words = {"check-core", platform::WordOfFile(options.guests.core),
                                      "--only", std::string(check.name)};
    if (check.isRandom) words.insert(words.end(), {"--seed", std::to_string(options.seed)});
    return words;
}

CheckOutcome OutcomeOf(const Check& check, const CheckOptions& options) {
    CheckOutcome outcome{.name = std::string(check.name), .level = check.level};
    if (check.isRandom) outcome.seed = options.seed;
    outcome.alone = kCommand;
    for (const std::string& word : WordsAlone(check, options))
        outcome.alone += ' ' + platform::AsTyped(word);
    return outcome;
}

bool IsAnythingOn(const std::string& tape) try {
    return !recorder::ReadTape(tape).sessions.empty();
} catch (const std::runtime_error&) {
    return false;
}

// A check that failed leaves its tape, and what it has told; of others nothing is left.
void SweepUp(const CheckStage::Place& place, CheckOutcome& outcome) {
    std::error_code error;
    const bool isKept = outcome.verdict == Verdict::kFaulty;
    const std::string tape = place.File("tape");
    if (isKept && IsAnythingOn(tape)) outcome.tape = tape;
    for (const std::string& name : platform::NamesInFolder(place.folder)) {
        const std::string path = place.folder + '/' + name;
        if (name.starts_with(place.name + '.') && path != outcome.tape)
            fs::remove(platform::FromNarrow(path), error);
    }
}

// What several things that went wrong are in one line.
std::string Several(const std::vector<std::string>& lines) {
    if (lines.size() < 2) return lines.empty() ? "" : lines.front();
    return lines.front() + " (and " + std::to_string(lines.size() - 1) + " more)";
}

// Its faults; what it threw stands first.
std::vector<std::string> FaultsOf(const Check& check, const CheckOptions& options,
                                  const CheckStage::Place& place) {
    GuestChoice guests = options.guests;
    guests.tape = place.File("tape");
    guests.watch = WatchChoice::kYes;
    CheckStage stage(guests, place, options.seed);
    std::optional<NotApplicable> skipped;
    std::vector<std::string> faults;
    try {
        check.act(stage);
    } catch (const Failure& failure) {
        faults.push_back(failure.what());
    } catch (const NotApplicable& no) {
        skipped = no;
    }
    for (std::string& fault : stage.End())
        faults.push_back(std::move(fault));
    if (skipped && faults.empty()) throw NotApplicable(*skipped);
    return faults;
}

double SecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// How the line of a check begins that says what came of it.
std::string Mark(const CheckOutcome& outcome) {
    return std::string(Word(outcome.verdict)) + ' ' + outcome.name;
}

// What a check's own process said of it.
void ReadVerdict(const std::string& said, int status, CheckOutcome& outcome) {
    std::vector<std::string> lines = LinesOf(said);
    std::ranges::reverse(lines);
    for (const std::string& line : lines)
        for (const Verdict verdict :
             {Verdict::kPassed, Verdict::kFaulty, Verdict::kNotApplicable}) {
            outcome.verdict = verdict;
            const std::string mark = Mark(outcome);
            if (line != mark && !line.starts_with(mark + ": ")) continue;
            outcome.why = line.substr(std::min(line.size(), mark.size() + 2));
            return;
        }
    outcome.verdict = Verdict::kFaulty;
    constexpr std::string_view kOfCommand = "lumiset-headless: ";
    outcome.why = !lines.empty() && lines.front().starts_with(kOfCommand)
                      ? "it ended with: " + lines.front()
                      : "its process was ended with status " + std::to_string(status);
}

// Where it lies then; empty if it cannot be moved.
std::string MovedInto(const std::string& folder, const std::string& file) {
    const fs::path from = platform::FromNarrow(file);
    std::string to = folder + '/' + platform::ToNarrow(from.filename());
    std::error_code error;
    fs::rename(from, platform::FromNarrow(to), error);
    return error ? std::string() : to;
}

}  // namespace

std::string_view Word(Verdict verdict) {
    constexpr std::array<std::string_view, 3> kWords = {"passed", "FAILED", "not applicable"};
    return kWords[static_cast<std::size_t>(verdict)];
}

void TellAlone(std::ostream& out, const CheckOutcome& outcome) {
    if (!outcome.tape.empty()) out << "tape: " << outcome.tape << '\n';
    out << Mark(outcome) << (outcome.why.empty() ? "" : ": ") << outcome.why << '\n';
}

const std::vector<Check>& Checks() {
    static const std::vector<Check> all = [] {
        std::vector<Check> checks;
        for (const auto some : {QuietChecks(), StateChecks(), UnrulyChecks(), RandomChecks()})
            checks.insert(checks.end(), some.begin(), some.end());
        return checks;
    }();
    return all;
}

std::string ToldInto(const std::string& log) {
    std::string told = TextOfFile(log);
    std::erase(told, '\r');
    return told;
}

CheckOutcome MakeCheck(const Check& check, const CheckOptions& options) {
    const Clock::time_point begin = Clock::now();
    const CheckStage::Place place = PlaceOf(check, options);
    CheckOutcome outcome = OutcomeOf(check, options);
    try {
        outcome.why = InTable(Several(FaultsOf(check, options, place)));
        if (!outcome.why.empty()) outcome.verdict = Verdict::kFaulty;
    } catch (const NotApplicable& no) {
        outcome.verdict = Verdict::kNotApplicable;
        outcome.why = no.why;
    } catch (const Failure& failure) {
        outcome.verdict = Verdict::kFaulty;
        outcome.why = InTable(failure.what());
    }
    SweepUp(place, outcome);
    outcome.seconds = SecondsSince(begin);
    return outcome;
}

CheckOutcome MakeCheckApart(const Check& check, const CheckOptions& options) {
    const Clock::time_point begin = Clock::now();
    const CheckStage::Place place{options.passing, PlaceOf(check, options).name};
    CheckOutcome outcome = OutcomeOf(check, options);
    std::vector<std::string> words = WordsAlone(check, options);
    words.insert(words.end(), {"--tapes", platform::WordOfFile(place.folder)});
    for (const char* const variable : {"TMPDIR", "TMP"})  // this process needs none any more
        platform::SetVariable(variable, place.folder);
    outcome.log = place.folder + '/' + place.name + "-steps.txt";
    const platform::ChildEnding ending =
        platform::RunChild({.program = platform::ProgramFile(),
                            .arguments = words,
                            .output = platform::FromNarrow(outcome.log),
                            .seconds = options.secondsEach,
                            .isGivenUp = &platform::Interrupt::IsWanted});
    if (ending.whyNot.empty()) {
        ReadVerdict(ToldInto(outcome.log), ending.status, outcome);
    } else if (!platform::Interrupt::IsWanted()) {
        outcome.verdict = Verdict::kFaulty;
        outcome.why = ending.whyNot;
    }
    SweepUp(place, outcome);
    if (outcome.verdict != Verdict::kFaulty) outcome.log.clear();
    for (std::string* const file : {&outcome.tape, &outcome.log})
        if (!file->empty()) *file = MovedInto(options.folder, *file);
    outcome.seconds = SecondsSince(begin);
    return outcome;
}

}  // namespace headless
