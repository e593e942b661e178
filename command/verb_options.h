#pragma once

#include <optional>
#include <string>
#include <vector>

#include "command/core_stage.h"
#include "command/output.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

// What several verbs offer alike.
namespace headless {

// The foot of a verb's help: the words stand as a person types them behind the command's name, with
// the files that `./dev demo` leaves behind.
void AddExample(CLI::App& verb, const std::string& words);

// Behind the example: what the words of a SceneReport mean.
void ExplainReport(CLI::App& verb);

// An argument or option for the names of files, of which none may be empty.
CLI::Option* AddFile(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help);
CLI::Option* AddFiles(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
                      const std::string& help);

// An option for a number that the host can hold, and for one above 0.
CLI::Option* AddNumber(CLI::App& verb, const std::string& words, double& number,
                       const std::string& help);
CLI::Option* AddSize(CLI::App& verb, const std::string& words, double& size,
                     const std::string& help);

// An option for a whole number; its range is checked when the verb runs.
CLI::Option* AddWholeNumber(CLI::App& verb, const std::string& words, std::optional<int>& number,
                            const std::string& help);

struct Range {
    int least;
    int most;
};
// Refuses what an option says beyond its range.
void CheckRange(const std::string& option, int number, Range range);

// Whom to start the host with: --no-core and --no-plugin.
struct GuestFlags {
    bool noCore = false;
    bool noPlugin = false;

    Guests Chosen() const;
};

void AddGuestOptions(CLI::App& verb, GuestFlags& words);

// --json: whom to print for.
void AddAudience(CLI::App& verb, Audience& audience);

// An option whose text is not empty.
CLI::Option* AddName(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help);

}  // namespace headless
