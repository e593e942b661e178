#include "command/wrong_words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <vector>

#include "command/verb_texts.h"

namespace headless {
namespace {

bool IsOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

std::vector<std::string> OptionsOf(const CLI::App& verb) {
    std::vector<std::string> names;
    for (const WordText& option : TextOf(verb).options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

// A word that nobody took, without what is said behind its "=". The mark behind which no option
// stands is none.
std::optional<std::string> FirstLeft(const CLI::App& verb) {
    for (const std::string& word : verb.remaining())
        if (word != "--") return IsOption(word) ? word.substr(0, word.find('=')) : word;
    return std::nullopt;
}

std::string NoOption(const CLI::App& verb, const std::string& word) {
    const std::string owner = verb.get_parent() ? NameOf(verb) : kCommand;
    return owner + " has no option " + word + TellNearest(word, OptionsOf(verb));
}

// The options of a verb stand behind it.
std::string LeftAhead(const CLI::App& program, const CLI::App* verb, const std::string& word) {
    if (!IsOption(word)) return NoVerb(program, word).what();
    if (verb && std::ranges::count(OptionsOf(*verb), word) > 0)
        return word + ": it stands behind the verb " + NameOf(*verb);
    return NoOption(program, word);
}

std::string LeftBehind(const CLI::App& verb, const std::string& word) {
    if (IsOption(word)) return NoOption(verb, word);
    return '"' + word + "\" is one argument too many: " + TextOf(verb).usage;
}

// By its first name, with what is to be said behind it.
std::string Wanted(const CLI::Option& option) {
    return option.get_name() +
           (option.nonpositional() ? ' ' + option.get_type_name() : std::string());
}

// What of the verb's options does not go together. Empty if all do.
std::string Together(const CLI::App& verb) {
    for (const CLI::Option* option : verb.get_options()) {
        if (option->get_required() && option->count() == 0) return Wanted(*option) + " is missing";
        if (option->count() == 0) continue;
        for (const CLI::Option* needed : option->get_needs())
            if (needed->count() == 0)
                return option->get_name() + " is said only with " + needed->get_name();
        for (const CLI::Option* other : option->get_excludes())
            if (other->count() > 0)
                return option->get_name() + " and " + other->get_name() + " do not go together";
    }
    return "";
}

// An option that is said with too many values or too few. The parser names it first.
std::string Mismatch(const CLI::App& verb, const std::string& told) {
    const std::string name = told.substr(0, told.find_first_of(": "));
    for (const CLI::Option* option : verb.get_options()) {
        const std::string own = option->get_name();
        if (name != own && "--" + name != own && '-' + name != own) continue;
        if (option->get_items_expected_max() == 0) return own + ": it takes no value";
        return own + (option->count() > 1 ? ": it is said twice" : ": its value is missing");
    }
    return name + ": its value is missing";
}

std::string InWords(const CLI::App& program, const CLI::App* verb, const CLI::ParseError& error) {
    if (const auto word = FirstLeft(program)) return LeftAhead(program, verb, *word);
    const CLI::App& called = verb ? *verb : program;
    if (const auto word = FirstLeft(called)) return LeftBehind(called, *word);
    if (dynamic_cast<const CLI::ValidationError*>(&error)) return error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return Mismatch(called, error.what());
    const std::string together = Together(called);
    return together.empty() ? error.what() : together;
}

}  // namespace

Failure NoVerb(const CLI::App& program, const std::string& word) {
    const std::string family = program.get_parent() ? NameOf(program) : "";
    if (word.empty()) {
        const std::string after = family.empty() ? "" : " behind " + family;
        const std::string lists = family.empty() ? "" : family + ' ';
        return Failure("a verb is missing" + after + " (" + lists + "--help lists them)",
                       kWrongUsage);
    }
    const std::string name = family.empty() ? word : family + ' ' + word;
    std::vector<std::string> verbs;
    for (const VerbText& verb : TextsOfVerbs(program))
        verbs.push_back(verb.name);
    return Failure("there is no verb \"" + name + '"' + TellNearest(name, verbs), kWrongUsage);
}

Failure WrongWords(const CLI::App& program, const CLI::ParseError& error) {
    const CLI::App* verb = nullptr;
    for (auto chosen = program.get_subcommands(); !chosen.empty(); chosen = verb->get_subcommands())
        verb = chosen.front();
    if (verb && IsFamily(*verb)) return NoVerb(*verb, FirstLeft(*verb).value_or(""));
    const std::string help = verb ? NameOf(*verb) + " --help" : "--help";
    return Failure(InWords(program, verb, error) + " (" + help + " tells more)", kWrongUsage);
}

}  // namespace headless
