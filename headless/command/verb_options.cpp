#include "command/verb_options.h"

#include <CLI/CLI.hpp>

namespace headless {
namespace {

// Empty, or what is wrong with the name of a file.
std::string CheckFileName(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

}  // namespace

void AddExample(CLI::App& verb, const std::string& words) {
    verb.footer(
        "Example, in the project's folder after ./dev demo:\n"
        "  build/release/bin/lumiset-headless " +
        words);
}

void ExplainReport(CLI::App& verb) {
    verb.footer(verb.get_footer() +
                "\nA take that is told to be below another one belongs to it in the Core, as takes "
                "do that were\nrecorded by one command.");
}

CLI::Option* AddFile(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help) {
    return verb.add_option(words, name, help)->check(CheckFileName, "FILE");
}

CLI::Option* AddFiles(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
                      const std::string& help) {
    return verb.add_option(words, names, help)->check(CheckFileName, "FILE");
}

Company CompanyWords::Chosen() const {
    if (noPlugin) return Company::kNobody;
    return noCore ? Company::kPluginAlone : Company::kPluginAndCore;
}

void AddCompanyOptions(CLI::App& verb, CompanyWords& words) {
    verb.add_flag("--no-core", words.noCore, "The plug-in finds no Core");
    verb.add_flag("--no-plugin", words.noPlugin, "The host is alone");
}

}  // namespace headless
