#include "command/verb_texts.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

namespace headless {
namespace {

bool TakesSeveral(const CLI::Option& option) {
    return option.get_items_expected_max() >= CLI::detail::expected_max_vector_size;
}

std::vector<std::string> NamesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames())
        names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

// How many of the names are told first: the short one and the long one.
std::size_t FirstNames(const CLI::Option& option) {
    return option.get_snames().size() + (option.get_lnames().empty() ? 0 : 1);
}

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
    std::string joined;
    for (const std::string& word : words)
        joined += joined.empty() ? word : between + word;
    return joined;
}

// In the order of the alphabet.
std::string NamesOf(const std::set<CLI::Option*>& options) {
    std::set<std::string> names;
    for (const CLI::Option* option : options)
        names.insert(option->get_name());
    return Joined({names.begin(), names.end()}, " or ");
}

std::string ValueOf(const CLI::Option& option) {
    return option.get_items_expected_max() == 0 ? "" : option.get_type_name();
}

std::string LabelOf(const CLI::Option& option) {
    if (!option.nonpositional()) return option.get_name() + (TakesSeveral(option) ? "..." : "");
    std::vector<std::string> names = NamesOf(option);
    names.resize(FirstNames(option));
    const std::string value = ValueOf(option);
    return Joined(names, ", ") + (value.empty() ? "" : ' ' + value);
}

std::string SentenceOf(const CLI::Option& option) {
    std::string text = option.get_description();
    if (!option.get_default_str().empty()) text += "; " + option.get_default_str() + " if not said";
    if (!option.get_needs().empty()) text += "; only with " + NamesOf(option.get_needs());
    if (!option.get_excludes().empty()) text += "; not with " + NamesOf(option.get_excludes());
    if (option.nonpositional() && !ValueOf(option).empty() &&
        option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll)
        text += "; may be said again for more";
    std::vector<std::string> old = NamesOf(option);
    old.erase(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(FirstNames(option)));
    return old.empty() ? text : text + "; also " + Joined(old, ", ");
}

WordText ToldOf(const CLI::Option& option) {
    return {.label = LabelOf(option),
            .text = SentenceOf(option),
            .names = NamesOf(option),
            .value = ValueOf(option),
            .isFile = option.get_type_name() == kFileValue,
            .state = option.get_items_expected_max() == 0 ? option.get_type_name() : ""};
}

// An option that must be said is told by its shortest name.
std::string UsageOf(const CLI::Option& option) {
    if (option.nonpositional()) return NamesOf(option).front() + ' ' + ValueOf(option);
    const std::string label = LabelOf(option);
    return option.get_required() ? label : '[' + label + ']';
}

std::string UsageOf(const CLI::App& verb) {
    if (!verb.get_parent()) return std::string(kCommand) + " VERB [ARGUMENTS] [OPTIONS]";
    std::string usage = std::string(kCommand) + ' ' + NameOf(verb);
    if (IsFamily(verb)) return usage + " VERB [ARGUMENTS] [OPTIONS]";
    for (const bool isOption : {false, true})
        for (const CLI::Option* option : verb.get_options())
            if (option->nonpositional() == isOption && (!isOption || option->get_required()))
                usage += ' ' + UsageOf(*option);
    return usage + " [OPTIONS]";
}

}  // namespace

std::string VerbText::Summary() const {
    const std::size_t end = text.find(". ");
    return text.substr(0, end == std::string::npos ? text.find_last_not_of('.') + 1 : end);
}

VerbText TextOf(const CLI::App& verb) {
    VerbText text{.name = NameOf(verb),
                  .group = verb.get_group(),
                  .usage = UsageOf(verb),
                  .text = verb.get_description(),
                  .foot = verb.get_footer()};
    for (const CLI::Option* option : verb.get_options())
        (option->nonpositional() ? text.options : text.arguments).push_back(ToldOf(*option));
    // The option that asks for help is the parser's first.
    std::rotate(text.options.begin(), text.options.begin() + 1, text.options.end());
    return text;
}

std::vector<const CLI::App*> VerbsOf(const CLI::App& program) {
    std::vector<const CLI::App*> verbs;
    for (const CLI::App* verb : program.get_subcommands({})) {
        std::vector<const CLI::App*> own = VerbsOf(*verb);
        if (own.empty()) own = {verb};
        verbs.insert(verbs.end(), own.begin(), own.end());
    }
    return verbs;
}

std::vector<VerbText> TextsOfVerbs(const CLI::App& program) {
    std::vector<VerbText> texts;
    for (const CLI::App* verb : VerbsOf(program))
        texts.push_back(TextOf(*verb));
    return texts;
}

std::string NameOf(const CLI::App& verb) {
    const CLI::App* const parent = verb.get_parent();
    const bool isInFamily = parent != nullptr && parent->get_parent() != nullptr;
    return isInFamily ? NameOf(*parent) + ' ' + verb.get_name() : verb.get_name();
}

const CLI::App* FindVerb(const CLI::App& program, const std::string& name) {
    for (const CLI::App* verb : program.get_subcommands({})) {
        if (NameOf(*verb) == name) return verb;
        if (const CLI::App* const own = FindVerb(*verb, name)) return own;
    }
    return nullptr;
}

bool IsFamily(const CLI::App& verb) {
    return !verb.get_subcommands({}).empty();
}

bool IsTyped(const std::string& line) {
    return line.starts_with("  ");
}

std::optional<WordText> RowOf(const std::string& line) {
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos) return std::nullopt;
    return WordText{.label = line.substr(0, tab), .text = line.substr(tab + 1)};
}

}  // namespace headless
