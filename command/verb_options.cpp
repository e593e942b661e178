#include "command/verb_options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>

namespace headless {
namespace {

// Empty, or what is wrong with the name of a file.
std::string CheckFileName(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

// Empty, or what is wrong with a number, which is to stay finite in single precision.
std::string CheckNumber(const std::string& text) {
    double number = 0;
    if (!CLI::detail::lexical_cast(text, number) || std::isnan(number))
        return text + " is not a number";
    return std::abs(number) <= std::numeric_limits<float>::max() ? "" : text + " is out of range";
}

// Empty, or what is wrong with a size.
std::string CheckSize(const std::string& text) {
    std::string wrong = CheckNumber(text);
    double size = 0;
    if (!wrong.empty()) return wrong;
    return CLI::detail::lexical_cast(text, size) && size > 0 ? "" : text + " is not above 0";
}

// Empty, or what is wrong with a whole number.
std::string CheckWholeNumber(const std::string& text) {
    int number = 0;
    return CLI::detail::lexical_cast(text, number) ? "" : text + " is not a whole number";
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

CLI::Option* AddWholeNumber(CLI::App& verb, const std::string& words, std::optional<int>& number,
                            const std::string& help) {
    return verb.add_option(words, number, help)->check(CheckWholeNumber, "WHOLE NUMBER");
}

void CheckRange(const std::string& option, int number, Range range) {
    if (number < range.least || number > range.most)
        throw CLI::ValidationError(option, std::to_string(number) + " is not from " +
                                               std::to_string(range.least) + " to " +
                                               std::to_string(range.most));
}

Guests GuestFlags::Chosen() const {
    if (noPlugin) return Guests::kNobody;
    return noCore ? Guests::kPluginAlone : Guests::kPluginAndCore;
}

void AddGuestOptions(CLI::App& verb, GuestFlags& words) {
    verb.add_flag("--no-core", words.noCore, "The plug-in finds no Core");
    verb.add_flag("--no-plugin", words.noPlugin, "The host is alone");
}

void AddAudience(CLI::App& verb, Audience& audience) {
    verb.add_flag_callback(
        "--json", [&audience] { audience = Audience::kProgram; },
        "Print the result as one JSON object");
}

CLI::Option* AddName(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help) {
    return verb.add_option(words, name, help)
        ->check([](const std::string& text) { return text.empty() ? "the name is empty" : ""; },
                "NAME");
}

}  // namespace headless
