#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <exception>
#include <iostream>
#include <string>

#include "command/print_result.h"
#include "command/record.h"

namespace {

// Exit statuses beside 0.
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

// Empty, or what is wrong with a size.
std::string CheckSize(const std::string& text) {
    double size = 0;
    const bool isNumber = CLI::detail::lexical_cast(text, size);
    return isNumber && size > 0 && std::isfinite(size) ? "" : text + " is not a number above 0";
}

int Fail(const std::string& what) {
    std::cerr << "lumiset-headless: " << what << '\n';
    return kFailed;
}

int Run(int argc, char** argv) {
    CLI::App app("The animation host without a screen, with the plug-in and its Core.");
    app.require_subcommand(1);
    headless::RecordOptions options;
    bool json = false;
    bool plainController = false;

    CLI::App* record = app.add_subcommand("record", "Record a motion capture into a new scene.");
    record->add_option("CAPTURE", options.capture, "Motion capture file (.bvh)")->required();
    record->add_option("--scale", options.metresPerUnit, "Metres in a unit of the capture")
        ->check(CheckSize, "ABOVE 0")
        ->capture_default_str();
    record->add_option("--units", options.hostUnitsPerMetre, "Host units in a metre")
        ->check(CheckSize, "ABOVE 0")
        ->capture_default_str();
    record->add_option("--csv", options.csv, "Write where each joint was in each frame");
    record->add_option("--trace", options.trace, "Write the plug-in's trace");
    record->add_flag("--no-optimised-controller", plainController,
                     "Record into the host's own controllers");
    record->add_flag("--json", json, "Print the result as one JSON object");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kWrongUsage;
    }
    options.optimisedController = !plainController;
    options.progress = isatty(STDERR_FILENO) != 0;

    const headless::RecordResult result = headless::Record(options);
    if (!result.error.empty()) return Fail(result.error);
    if (json)
        headless::PrintForProgram(std::cout, result);
    else
        headless::PrintForPerson(std::cout, result);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Fail(error.what());
    }
}
