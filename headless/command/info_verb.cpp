#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "command/info.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

struct Words {
    InfoOptions options;
    CompanyWords company;
    bool json = false;
};

void Run(const Words& words) {
    InfoOptions options = words.options;
    options.company = words.company.Chosen();
    const InfoResult result = Info(options);
    if (words.json)
        PrintForProgram(std::cout, result);
    else
        PrintForPerson(std::cout, result);
}

}  // namespace

void AddInfoVerb(CLI::App& app) {
    const auto words = std::make_shared<Words>();
    CLI::App* verb = app.add_subcommand("info", "Tell what a scene file holds.");
    AddFile(*verb, "SCENE", words->options.scene, "Scene file")->required();
    AddCompanyOptions(*verb, words->company);
    verb->add_flag("--json", words->json, "Print the result as one JSON object");
    AddExample(*verb, "info build/demo/take.scene");
    verb->callback([words] { Run(*words); });
}

}  // namespace headless
