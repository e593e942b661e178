#include "command/verb_options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <memory>

#include "command/exit_status.h"
#include "command/verb_texts.h"
#include "recorder/tape/tape_limit.h"

namespace headless {
namespace {

constexpr char kWatchAlone[] = "true";  // what the parser gives for a word without a value

// Empty, or what is wrong with the name of a file.
std::string CheckFileName(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

std::string CheckName(const std::string& text) {
    return text.empty() ? "the name is empty" : "";
}

// Empty, or what is wrong with a number, which is to stay finite in single precision.
std::string CheckNumber(const std::string& text) {
    double number = 0;
    if (!CLI::detail::lexical_cast(text, number) || std::isnan(number))
        return '"' + text + "\" is not a number";
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
    return CLI::detail::lexical_cast(text, number) ? "" : '"' + text + "\" is not a whole number";
}

std::uint64_t ReadTapeLimit(const std::string& text) {
    const std::optional<std::uint64_t> bytes = recorder::ReadBytes(text);
    if (!bytes) Refuse("--tape-limit: \"" + text + "\" is no size, as 500M or 2G is one");
    if (*bytes < recorder::kLeastTapeLimit)
        Refuse("--tape-limit: " + text + " is less than " +
               std::to_string(recorder::kLeastTapeLimit >> 20) + "M");
    return *bytes;
}

constexpr char kStrictly[] = "strict";

// Empty, or what is wrong with what stands behind --watch, which can be nothing.
std::string ReadWatch(const std::string& text, WatchChoice& choice) {
    if (text != kWatchAlone && text != kStrictly)
        return '"' + text + "\" is not \"" + kStrictly + '"';
    choice = text == kWatchAlone ? WatchChoice::kYes : WatchChoice::kStrict;
    return {};
}

// The parser keeps the word itself as well.
CLI::Option* AddWatch(CLI::App& verb, WatchChoice& choice) {
    const auto word = std::make_shared<std::string>();
    return verb
        .add_flag("--watch", *word,
                  "Tell which calls between plug-in and Core break their contract; with "
                  "--watch=strict one ends the command with 1")
        ->type_name(kStrictly)
        ->check([&choice, word](const std::string& text) { return ReadWatch(text, choice); });
}

}  // namespace

CLI::App* AddVerb(CLI::App& program, const char* group, const std::string& name,
                  const std::string& text) {
    const std::size_t blank = name.find(' ');
    if (blank == std::string::npos) return program.add_subcommand(name, text)->group(group);
    const std::string family = name.substr(0, blank);
    CLI::App* of = nullptr;
    for (CLI::App* const verb : program.get_subcommands({}))
        if (verb->get_name() == family) of = verb;
    if (of == nullptr) {
        of = program.add_subcommand(family, "One of these verbs:")->group(group);
        of->require_subcommand(1)->footer("");
    }
    return of->add_subcommand(name.substr(blank + 1), text)->group(group);
}

void AddExample(CLI::App& verb, const std::string& words) {
    verb.footer("Example:\n  " + std::string(kCommand) + ' ' + words);
}

void ExplainReport(CLI::App& verb) {
    verb.footer(verb.get_footer() +
                "\n\nA take that is told to be below another one belongs to it in the Core, as "
                "takes do that were recorded by one command.");
}

CLI::Option* AddSwitch(CLI::App& verb, const std::string& words, bool& isSaid,
                       const std::string& help) {
    return verb.add_flag(words, isSaid, help)->disable_flag_override();
}

CLI::Option* AddFile(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help) {
    return verb.add_option(words, name, help)->check(CheckFileName)->type_name(kFileValue);
}

CLI::Option* AddFiles(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
                      const std::string& help) {
    return verb.add_option(words, names, help)->check(CheckFileName)->type_name(kFileValue);
}

CLI::Option* AddOutput(CLI::App& verb, const std::string& old, std::string& name,
                       const std::string& help) {
    return AddFile(verb, "-o," + std::string(kOutput) + (old.empty() ? "" : ',' + old), name, help);
}

CLI::Option* AddNumber(CLI::App& verb, const std::string& words, double& number,
                       const std::string& help) {
    return verb.add_option(words, number, help)->check(CheckNumber)->type_name("NUMBER");
}

CLI::Option* AddSize(CLI::App& verb, const std::string& words, double& size,
                     const std::string& help) {
    return verb.add_option(words, size, help + ", a number above 0")
        ->check(CheckSize)
        ->type_name("NUMBER");
}

CLI::Option* AddWholeNumber(CLI::App& verb, const std::string& words, std::optional<int>& number,
                            const std::string& help) {
    return verb.add_option(words, number, help)->check(CheckWholeNumber)->type_name("NUMBER");
}

std::string Told(Range range) {
    return std::to_string(range.least) + " to " + std::to_string(range.most);
}

void CheckRange(const std::string& option, int number, Range range) {
    if (number < range.least || number > range.most)
        throw CLI::ValidationError(option, std::to_string(number) + " is not from " + Told(range));
}

void AddGuestOptions(CLI::App& verb, GuestChoice& choice) {
    const std::vector<CLI::Option*> ofCore = AddCore(verb, choice);
    const auto add = [&](const char* word, Guests guests, const char* help) {
        CLI::Option* const without = verb.add_flag_callback(
            word, [&choice, guests] { choice.guests = guests; }, help);
        without->disable_flag_override();
        for (CLI::Option* const option : ofCore)
            without->excludes(option);
    };
    add("--no-core", Guests::kPluginAlone, "The plug-in finds no Core");
    add("--no-plugin", Guests::kNobody, "The host is alone");
}

std::vector<CLI::Option*> AddCore(CLI::App& verb, GuestChoice& choice) {
    CLI::Option* const core =
        AddFile(verb, "--core", choice.core,
                "The library that is the Core, wherever it lies; else the installed one");
    CLI::Option* const tape = AddFile(
        verb, "--tape", choice.tape,
        "Write down in this file all that crosses between plug-in and Core, behind what it holds");
    AddRead(verb, "--tape-limit", "SIZE",
            "The size that the tape grows to, in bytes or with K, M or G behind a number",
            [&choice](const std::string& text) { choice.tapeLimit = ReadTapeLimit(text); })
        ->default_str("1G")
        ->needs(tape);
    AddSwitch(verb, "--with-scenes", choice.withScenes,
              "Scenes that are opened or merged travel in the tape")
        ->needs(tape);
    return {core, tape, AddWatch(verb, choice.watch)};
}

void AddTape(CLI::App& verb, std::string& tape) {
    AddFile(verb, "TAPE", tape, "What `--tape` has recorded")->required();
}

void AddAudience(CLI::App& verb, Audience& audience) {
    verb.add_flag_callback(
            "--json", [&audience] { audience = Audience::kProgram; },
            "Print the result as one JSON object")
        ->disable_flag_override();
}

CLI::Option* AddRead(CLI::App& verb, const std::string& words, const std::string& form,
                     const std::string& help, std::function<void(const std::string&)> read) {
    return verb.add_option_function(words, std::move(read), help)->type_name(form);
}

CLI::Option* AddName(CLI::App& verb, const std::string& words, std::string& name,
                     const std::string& help) {
    return verb.add_option(words, name, help)->check(CheckName)->type_name("NAME");
}

void AddNames(CLI::App& verb, const std::string& words, std::vector<std::string>& names,
              const std::string& help) {
    verb.add_option(words, names, help + "; all if none is named")
        ->expected(1)
        ->take_all()
        ->check(CheckName)
        ->type_name("NAME");
}

void AddNodes(CLI::App& verb, std::vector<std::string>& names, const std::string& help) {
    AddNames(verb, "--node", names, help);
}

}  // namespace headless
