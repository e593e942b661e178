#include <CLI/CLI.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "command/exit_status.h"
#include "command/verbs.h"
#include "headless/breaches.h"
#include "platform/process.h"

namespace {

constexpr char kNoMemory[] = "there is not enough memory";

// Of the shutdown, and of a verb that does not tell them itself.
void TellBreaches() {
    for (const std::string& line : headless::TakeBreachLines())
        std::cerr << "Complaint: " << line << '\n';
}

int Fail(const char* what, int status) {
    std::cerr << "lumiset-headless: " << what << '\n';
    return status;
}

headless::Failure WrongUsage(const std::string& what) {
    return headless::Failure(what + " (--help tells more)", headless::kWrongUsage);
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
    std::_Exit(Fail(kNoMemory, headless::kFailed));
}

int Run(int argc, char** argv) {
    RefuseLostArgument();
    const std::terminate_handler usual = std::set_terminate(&EndBeforeWork);
    CLI::App app("The animation host without a screen, with the plug-in and its Core.");
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", LUMISET_VERSION, "Print the version and end");
    app.parse_complete_callback([usual] { std::set_terminate(usual); });  // ahead of the verb's
    app.allow_windows_style_options(false);  // a path may begin with a slash
    headless::AddRecordVerb(app);
    headless::AddOpenVerb(app);
    headless::AddMergeVerb(app);
    headless::AddSampleVerb(app);
    headless::AddInspectVerb(app);
    headless::AddDrawVerb(app);
    headless::AddRenderVerb(app);
    headless::AddConvertVerb(app);
    headless::AddInfoVerb(app);
    headless::AddDiffVerb(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        throw WrongUsage(error.what());
    }
    if (app.get_subcommands().empty()) throw WrongUsage("a verb is missing");
    if (!std::cout.flush()) throw headless::Failure(headless::kOutputLost);
    return headless::kDone;
}

int Guarded(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const headless::Ended& ended) {
        return ended.status;
    } catch (const headless::Failure& failure) {
        return Fail(failure.what(), failure.Status());
    } catch (const std::bad_alloc&) {
        return Fail(kNoMemory, headless::kFailed);
    } catch (const std::exception& error) {
        return Fail(error.what(), headless::kFailed);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int status = Guarded(argc, argv);
    TellBreaches();
    return status;
}
