#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/scene_file_view.h"

namespace headless {
namespace {

struct DiffArguments {
    std::string first;
    std::string second;
    bool cachedKeys = false;
    Audience audience = Audience::kPerson;
};

// A type of this file, so that its printing is found.
struct Differences : std::vector<SceneDifference> {};

void PrintForPerson(std::ostream& out, const Differences& differences) {
    for (const SceneDifference& difference : differences)
        out << difference.place << ": " << difference.what << '\n';
}

void PrintForProgram(std::ostream& out, const Differences& differences) {
    auto list = nlohmann::ordered_json::array();
    for (const SceneDifference& difference : differences)
        list.push_back({{"place", difference.place}, {"difference", difference.what}});
    PrintJson(out, {{"equal", differences.empty()}, {"differences", list}});
}

Differences Compare(const DiffArguments& arguments) {
    const ToldSceneFiles told;
    const auto cachedKeys = arguments.cachedKeys ? CachedKeys::kCompared : CachedKeys::kLeftOut;
    return {
        OrRefuse([&] { return CompareSceneFiles(arguments.first, arguments.second, cachedKeys); },
                 kNotCompared)};
}

void RunDiff(const DiffArguments& arguments) {
    const Differences differences = Compare(arguments);
    Print(std::cout, differences, arguments.audience);
    if (!std::cout.flush()) throw Failure(kOutputLost, kNotCompared);
    if (!differences.empty()) throw Ended{kDifferent};
}

}  // namespace

void AddDiffVerb(CLI::App& app) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App* verb =
        AddVerb(app, kLooking, "diff",
                "Tell in words in what two scene files differ. The exit status is 0 if they hold "
                "the same, 1 if they differ, 2 if they cannot be compared.");
    AddFile(*verb, "FIRST", arguments->first, "Scene file")->required();
    AddFile(*verb, "SECOND", arguments->second, "Scene file")->required();
    AddSwitch(*verb, "--cached-keys", arguments->cachedKeys,
              "Compare also the keys that controllers cache, which evaluation moves");
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "diff walk.scene again.scene");
    verb->callback([arguments] { RunDiff(*arguments); });
}

}  // namespace headless
