#pragma once

#include <string>

#include "command/core_stage.h"

namespace CLI {
class App;
}

// What several verbs offer alike.
namespace headless {

// The foot of a verb's help: the words stand as a person types them behind the command's name, with
// the files that `./dev demo` leaves behind.
void AddExample(CLI::App& verb, const std::string& words);

// Whom to start the host with: --no-core and --no-plugin.
struct CompanyWords {
    bool noCore = false;
    bool noPlugin = false;

    Company Chosen() const;
};

// Empty, or what is wrong with the name of a file.
std::string CheckFileName(const std::string& text);

void AddCompanyOptions(CLI::App& verb, CompanyWords& words);

}  // namespace headless
