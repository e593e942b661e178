#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "command/help.h"
#include "command/verb_options.h"
#include "command/verb_texts.h"
#include "command/verbs.h"
#include "command/wrong_words.h"

namespace headless {
namespace {

void PrintHelp(const CLI::App& program, const std::string& name) {
    const auto verbs = program.get_subcommands({});
    const auto verb = std::ranges::find(verbs, name, &CLI::App::get_name);
    if (!name.empty() && verb == verbs.end()) throw NoVerb(program, name);
    std::cout << HelpOf(name.empty() ? program : **verb);
}

}  // namespace

void AddHelpVerbs(CLI::App& app) {
    CLI::App* const help = AddVerb(app, kHelping, "help", "Explain a verb, or list them all.");
    const auto verb = std::make_shared<std::string>();
    help->add_option("VERB", *verb, "What to tell of; all verbs in short if none is named")
        ->type_name(kVerbValue);
    AddExample(*help, "help record");
    help->callback([&app, verb] { PrintHelp(app, *verb); });

    CLI::App* const manual =
        AddVerb(app, kHelping, "manual", "Print the page of the manual, to be read by man.");
    AddExample(*manual, "manual | man -l -");
    manual->callback([&app] { PrintManual(std::cout, app); });

    CLI::App* const completion =
        AddVerb(app, kHelping, "completion",
                "Print a script that has bash complete verbs, options and files.");
    AddExample(*completion,
               "completion >~/.local/share/bash-completion/completions/lumiset-headless");
    completion->callback([&app] { PrintCompletion(std::cout, app); });
}

}  // namespace headless
