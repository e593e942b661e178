#include "command/verb_options.h"

#include <CLI/CLI.hpp>

namespace headless {

void AddExample(CLI::App& verb, const std::string& words) {
    verb.footer(
        "Example, in the project's folder after ./dev demo:\n"
        "  build/release/bin/lumiset-headless " +
        words);
}

std::string CheckFileName(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
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
