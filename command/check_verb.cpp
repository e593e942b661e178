#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>

#include "command/check_report.h"
#include "command/checks/checks.h"
#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/output.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "platform/interrupt.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

namespace fs = std::filesystem;

constexpr Range kStrictness{1, kStrictest};
constexpr int kLives = 3;  // of a random check

struct CheckArguments {
    CheckOptions options;
    std::optional<int> strictness;
    std::string only;
    std::optional<int> seed;
    std::optional<int> reproduced;
    std::string junit;
    Audience audience = Audience::kPerson;
};

const Check& TheCheck(const std::string& name) {
    const auto found = std::ranges::find(Checks(), name, &Check::name);
    if (found != Checks().end()) return *found;
    std::vector<std::string> names;
    for (const Check& check : Checks())
        names.emplace_back(check.name);
    Refuse("--only: there is no check \"" + name + '"' + TellNearest(name, names) +
           " (check-core --help lists them)");
}

std::uint64_t SeedOf(const CheckArguments& arguments) {
    const int seed = arguments.reproduced.value_or(arguments.seed.value_or(1));
    if (seed < 1) Refuse("a seed is a whole number from 1 on");
    return static_cast<std::uint64_t>(seed);
}

void MakeFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(platform::FromNarrow(folder), error);
    if (error) throw Failure("--tapes: " + folder + ": " + error.message());
}

void NeedRandomChecks(int strictness) {
    int least = kStrictest;
    for (const Check& check : Checks())
        if (check.isRandom) least = std::min(least, check.level);
    if (strictness < least)
        Refuse("--reproduce: random checks are made from --strictness " + std::to_string(least) +
               " on");
}

// How often a check is made, from seeds that follow each other.
int LivesOf(const Check& check, const CheckArguments& arguments) {
    if (!arguments.only.empty()) return check.name == arguments.only ? 1 : 0;
    if (check.level > arguments.strictness.value_or(kStrictest)) return 0;
    if (arguments.reproduced) return check.isRandom ? 1 : 0;
    return check.isRandom ? kLives : 1;
}

std::size_t CountLives(const CheckArguments& arguments) {
    int lives = 0;
    for (const Check& check : Checks())
        lives += LivesOf(check, arguments);
    return static_cast<std::size_t>(lives);
}

// Whatever is made tells of itself at once. The first check shows whether there is a Core at all.
void MakeAll(const CheckArguments& arguments, const CheckOptions& options, LongWork& checking,
             CheckReport& report) {
    const PassingFolder passing(options.folder, "passing");
    for (const Check& check : Checks()) {
        CheckOptions own = options;
        own.passing = passing.Path();
        for (int life = 0; life < LivesOf(check, arguments); ++life, ++own.seed) {
            CheckOutcome outcome = MakeCheckApart(check, own);
            if (platform::Interrupt::IsWanted()) return;
            report.outcomes.push_back(std::move(outcome));
            checking.Wipe();
            if (arguments.audience == Audience::kPerson)
                PrintOutcome(std::cout, report.outcomes.back());
            checking.StepDone()();
        }
        if (&check == &Checks().front() && report.Count(Verdict::kFaulty) > 0) return;
    }
}

void RunChecks(const CheckArguments& arguments) {
    const int strictness = arguments.strictness.value_or(kStrictest);
    CheckRange("--strictness", strictness, kStrictness);
    CheckOptions options = arguments.options;
    options.seed = SeedOf(arguments);
    const bool isPassing = options.folder.empty();
    const platform::Interrupt interrupt;  // no folder is left then
    if (!arguments.only.empty()) TheCheck(arguments.only);
    if (arguments.reproduced) NeedRandomChecks(strictness);
    if (!isPassing) MakeFolder(options.folder);
    std::optional<CoreFile> junit;
    if (!arguments.junit.empty()) junit.emplace(arguments.junit);
    if (isPassing) options.folder = NewFolder(FolderForPassing(), "lumiset-checks");
    CheckReport report{.core = options.guests.core, .outcomes = {}};
    LongWork checking("Checking", CountLives(arguments), "check");
    if (arguments.only.empty()) {
        MakeAll(arguments, options, checking, report);
    } else {
        report.outcomes.push_back(MakeCheck(TheCheck(arguments.only), options));
        if (arguments.audience == Audience::kPerson) TellAlone(std::cout, report.outcomes.back());
    }
    std::error_code isInUse;
    if (isPassing) fs::remove(platform::FromNarrow(options.folder), isInUse);
    checking.Wipe();
    const bool isStopped = platform::Interrupt::IsWanted();
    if (junit && !isStopped) WriteJunit(report, *junit);
    if (arguments.only.empty() || arguments.audience == Audience::kProgram)
        Print(std::cout, report, arguments.audience);
    checking.End();
    if (report.Count(Verdict::kFaulty) > 0) throw Ended{kFailed};
}

std::string TextOnChecks() {
    std::string text = "A row for each check, with the strictness from which on it is made:\n\n";
    for (const Check& check : Checks())
        text += std::string(check.name) + " (" + std::to_string(check.level) + ")\t" +
                std::string(check.help) + '\n';
    return text;
}

void AddSeeds(CLI::App& verb, CheckArguments& arguments) {
    AddWholeNumber(verb, "--seed", arguments.seed,
                   "From which random checks go; 1 if not said, and each is made with this and " +
                       std::to_string(kLives - 1) + " more");
    AddWholeNumber(verb, "--reproduce", arguments.reproduced,
                   "Make the random checks alone, and of this seed")
        ->excludes("--seed");
}

}  // namespace

void AddCheckVerb(CLI::App& app) {
    const auto arguments = std::make_shared<CheckArguments>();
    CheckOptions& options = arguments->options;
    CLI::App* verb =
        AddVerb(app, kDriving, "check-core",
                "Put a Core through what a host and its user can do to it. Each check is made in a "
                "process of its own, with the watch; one that fails leaves a tape and the command "
                "that makes it alone.");
    AddFile(*verb, "CORE", options.guests.core, "The library that is the Core")->required();
    AddWholeNumber(*verb, "--strictness", arguments->strictness,
                   "How much is asked, " + Told(kStrictness))
        ->default_str(std::to_string(kStrictest));
    AddName(*verb, "--only", arguments->only,
            "Make this check alone, in this process, for a debugger to look on");
    AddSeeds(*verb, *arguments);
    AddSize(*verb, "--time-limit", options.secondsEach, "Seconds that a check may take")
        ->capture_default_str();
    verb->add_option("--tapes", options.folder,
                     "The folder for tapes of checks that fail; a new one among the temporary "
                     "files if not said")
        ->type_name("FOLDER");
    AddFile(*verb, "--junit", arguments->junit, "Write what came of them in the form of JUnit");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "check-core build/Core/Core64.so --strictness 5");
    verb->footer(TextOnChecks() + '\n' + verb->get_footer());
    verb->callback([arguments] { RunChecks(*arguments); });
}

}  // namespace headless
