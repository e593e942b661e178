#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "command/exit_status.h"
#include "command/verbs.h"

namespace {

int Run(int argc, char** argv) {
    CLI::App app("The animation host without a screen, with the plug-in and its Core.");
    app.require_subcommand(1);
    headless::AddRecordVerb(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? headless::kDone : headless::kWrongUsage;
    }
    return headless::kDone;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "lumiset-headless: " << error.what() << '\n';
        return headless::kFailed;
    }
}
