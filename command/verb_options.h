#pragma once

#include <functional>
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

// What verbs are for: the groups in which the program's help lists them.
inline constexpr char kMaking[] = "To record and to draw";
inline constexpr char kKeeping[] = "To open, merge and convert";
inline constexpr char kLooking[] = "To look";
inline constexpr char kTakingAlong[] = "To take along";
inline constexpr char kDriving[] = "To drive any Core";
inline constexpr char kTaping[] = "To record what crosses the boundary";
inline constexpr char kHelping[] = "To learn more";

// The first sentence of the text stands in the program's help, the whole of it in the verb's. A
// verb of two words, as "tape info", is one of the family of the first.
CLI::App* AddVerb(CLI::App& program, const char* group, const std::string& name,
                  const std::string& text);

// The foot of a verb's help: the words stand as a person types them behind the command's name.
void AddExample(CLI::App& verb, const std::string& words);

// Behind the example: what the words of a SceneReport mean.
void ExplainReport(CLI::App& verb);

// An option that takes no value.
CLI::Option* AddSwitch(CLI::App& verb, const std::string& words, bool& isSaid,
                       const std::string& help);

// An argument or option for the names of files, of which none may be empty.
CLI::Option* AddFile(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help);
CLI::Option* AddFiles(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
                      const std::string& help);

// The file of what a verb is there for. It is called alike in all verbs; `old` is how it was called
// in this one, which still holds, or empty.
inline constexpr char kOutput[] = "--output";
CLI::Option* AddOutput(CLI::App& verb, const std::string& old, std::string& name,
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
std::string Told(Range range);
// Refuses what an option says beyond its range.
void CheckRange(const std::string& option, int number, Range range);

// Whom to start the host with: --core, --no-core and --no-plugin, or --core alone where a verb is
// nothing without a Core. With --core come --tape and --watch; what is added is given.
void AddGuestOptions(CLI::App& verb, GuestChoice& choice);
std::vector<CLI::Option*> AddCore(CLI::App& verb, GuestChoice& choice);

// TAPE: the one that a verb works on.
void AddTape(CLI::App& verb, std::string& tape);

// --json: whom to print for.
void AddAudience(CLI::App& verb, Audience& audience);

// An option whose text is read at once; what is wrong with it is thrown.
CLI::Option* AddRead(CLI::App& verb, const std::string& words, const std::string& form,
                     const std::string& help, std::function<void(const std::string&)> read);

// An option whose text is not empty.
CLI::Option* AddName(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help);

// The same as often as a person likes.
void AddNames(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
              const std::string& help);

// --node, as often as a person likes: the names of nodes, and whose names these are.
void AddNodes(CLI::App& verb, std::vector<std::string>& names,
              const std::string& help = "The host's name of a node");

}  // namespace headless
