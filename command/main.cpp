#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/stage_recorder.h"
#include "command/verb_texts.h"
#include "command/verbs.h"
#include "command/written_files.h"
#include "command/wrong_words.h"
#include "headless/breaches.h"
#include "platform/process.h"
#include "tvl/adaptor_interface.h"

namespace {

constexpr char kFault[] = "a fault of the program itself, not of what it was asked for: ";

// The one line of a failure. Asks for no memory.
int Fail(const char* kind, const char* what, int status) {
    std::cerr << headless::kCommand << ": " << kind << what;
    headless::TellWhatStands(std::cerr);
    std::cerr << '\n';
    return status;
}

// By a word that lost a letter on its way another file would be taken.
void RefuseLostArgument() {
    const std::string lost = platform::LostArgument();
    if (!lost.empty())
        throw headless::Failure(lost + ": the code page lacks a letter of this",
                                headless::kWrongUsage);
}

// CLI11 asks for memory where it has promised to throw nothing.
[[noreturn]] void EndBeforeWork() {
    std::_Exit(Fail("", headless::kNoMemory, headless::kFailed));
}

void AddVerbs(CLI::App& app) {
    headless::AddRecordVerb(app);
    headless::AddDrawVerb(app);
    headless::AddOpenVerb(app);
    headless::AddMergeVerb(app);
    headless::AddConvertVerb(app);
    headless::AddRecoverVerb(app);
    headless::AddRenderVerb(app);
    headless::AddInfoVerb(app);
    headless::AddDiffVerb(app);
    headless::AddInspectVerb(app);
    headless::AddSampleVerb(app);
    headless::AddExportVerb(app);
    headless::AddViewVerb(app);
    headless::AddRunVerb(app);
    headless::AddCheckVerb(app);
    headless::AddTapeVerbs(app);
    headless::AddTapeWatchVerb(app);
    headless::AddTapeReplayVerb(app);
    headless::AddHelpVerbs(app);
}

// "VERB help" is meant as "help VERB", but where there is a scene of that name.
void TurnHelpAhead(int argc, char** argv) {
    constexpr std::string_view kHelp = "help";
    if (argc == 3 && argv[2] == kHelp && !std::filesystem::exists(kHelp))
        std::swap(argv[1], argv[2]);
}

int Run(int argc, char** argv) {
    RefuseLostArgument();
    TurnHelpAhead(argc, argv);
    const std::terminate_handler usual = std::set_terminate(&EndBeforeWork);
    CLI::App app(
        "An animation host without a screen, with the plug-in and its Core. What came of a verb "
        "is printed when all of it is done, of run step by step, and a file is written whole or "
        "not at all.");
    app.require_subcommand(0, 1);
    headless::UseOwnHelp(app);
    app.set_version_flag("--version",
                         std::string(headless::kCommand) + ' ' + LUMISET_VERSION + ", interface " +
                             std::to_string(TVL::kInterfaceVersion),
                         "Print the versions of program and interface");
    app.parse_complete_callback([usual] { std::set_terminate(usual); });  // ahead of the verb's
    app.allow_windows_style_options(false);  // a path may begin with a slash
    AddVerbs(app);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) throw headless::NoVerb(app, "");
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw headless::WrongWords(app, error);
        app.exit(error);
    }
    if (!std::cout.flush()) throw headless::Failure(headless::kOutputLost);
    return headless::kDone;
}

bool isAtWork = false;

// Whoever believes the status is not to take what a guest has broken off for done.
void RefuseToEnd() {
    if (!isAtWork) return;
    std::cout.flush();
    std::_Exit(Fail("", "the plug-in or its Core has ended the process", headless::kFailed));
}

int Guarded(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const headless::Ended& ended) {
        return ended.status;
    } catch (const headless::Failure& failure) {
        const bool isStopped = failure.Status() == headless::kStopped;
        return Fail(isStopped ? "stopped: " : "", failure.what(), failure.Status());
    } catch (const std::bad_alloc&) {
        return Fail("", headless::kNoMemory, headless::kFailed);
    } catch (const std::exception& error) {
        return Fail(kFault, error.what(), headless::kFailed);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::atexit(&RefuseToEnd);
    isAtWork = true;
    const int status = Guarded(argc, argv);
    isAtWork = false;
    // Of the shutdown, and of a verb that does not tell them itself.
    headless::PrintEach(std::cerr, headless::kComplaint, headless::TakeBreachLines());
    return status == headless::kDone && headless::HasStrictFinding() ? headless::kFailed : status;
}
