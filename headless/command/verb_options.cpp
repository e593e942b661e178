#include "command/verb_options.h"

#include <CLI/CLI.hpp>
#include <cmath>

namespace headless {
namespace {

// Empty, or what is wrong with the name of a file.
std::string CheckFileName(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

// Whether the text is a number that stays finite in single precision.
bool IsNumber(const std::string& text, double& number) {
    return CLI::detail::lexical_cast(text, number) && std::isfinite(static_cast<float>(number));
}

// Empty, or what is wrong with a number.
std::string CheckNumber(const std::string& text) {
    double number = 0;
    return IsNumber(text, number) ? "" : text + " is not a number";
}

// Empty, or what is wrong with a size.
std::string CheckSize(const std::string& text) {
    double size = 0;
    return IsNumber(text, size) && size > 0 ? "" : text + " is not a number above 0";
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

CLI::Option* AddNumber(CLI::App& verb, const std::string& words, double& number,
                       const std::string& help) {
    return verb.add_option(words, number, help)->check(CheckNumber, "NUMBER");
}

CLI::Option* AddSize(CLI::App& verb, const std::string& words, double& size,
                     const std::string& help) {
    return verb.add_option(words, size, help)->check(CheckSize, "ABOVE 0");
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
