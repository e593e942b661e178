#include <CLI/CLI.hpp>
#include <ostream>

#include "command/steps.h"
#include "command/verb_texts.h"

namespace headless {
namespace {

// What is offered hangs on the verb, which is the first word that is no option, or that and the
// next one where the first is a family's, and on the option ahead of the cursor. An equals sign is
// a word of its own for bash.
constexpr char kHead[] = R"(# To be sourced by bash.
_lumiset_headless() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local families='FAMILIES'
    local verb= place options= files= valued= chosen= choices= words= takes_files=
    local sign= switched= states=
    if [[ $word == = ]]; then
        word= sign=1
    elif [[ $before == = ]]; then
        sign=1
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((place = 1; place < COMP_CWORD; ++place)); do
        [[ ${COMP_WORDS[place]} == -* ]] && continue
        verb=${verb:+$verb }${COMP_WORDS[place]}
        [[ " $families " == *" $verb "* ]] || break
    done
    COMPREPLY=()
    case $verb in
)";

constexpr char kTail[] = R"(    esac
    if [[ $sign && " $switched " == *" $before "* ]]; then
        words=$states takes_files=
    elif [[ " $chosen " == *" $before "* ]]; then
        words=$choices takes_files=
    elif [[ " $files " == *" $before "* ]]; then
        words= takes_files=1
    elif [[ " $valued " == *" $before "* ]]; then
        words= takes_files=
    elif [[ $word == -* ]]; then
        words=$options takes_files=
    fi
    if [[ $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    elif [[ $takes_files ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}
complete -F _lumiset_headless lumiset-headless
)";

void Append(std::string& list, const std::vector<std::string>& words) {
    for (const std::string& word : words)
        list += list.empty() ? word : ' ' + word;
}

// A step of two words begins with the first one alike.
std::string StepNames() {
    std::string names;
    std::string_view last;
    for (const StepKind& kind : StepKinds()) {
        const std::string_view name = kind.name.substr(0, kind.name.find(' '));
        if (name != last) Append(names, {std::string(name)});
        last = name;
    }
    return names;
}

void PrintCase(std::ostream& out, const VerbText& verb, const std::string& pattern,
               const std::string& words) {
    std::string options;
    std::string files;
    std::string valued;
    std::string chosen;
    std::string switched;
    std::string states;
    for (const WordText& option : verb.options) {
        Append(options, option.names);
        if (!option.state.empty()) {
            Append(switched, option.names);
            Append(states, {option.state});
        }
        if (option.isFile)
            Append(files, option.names);
        else if (option.value == kStepValue)
            Append(chosen, option.names);
        else if (!option.value.empty())
            Append(valued, option.names);
    }
    bool takesFiles = false;
    for (const WordText& argument : verb.arguments)
        takesFiles |= argument.isFile;
    out << "        " << pattern << ")\n"
        << "            options='" << options << "'\n"
        << "            files='" << files << "'\n"
        << "            valued='" << valued << "'\n"
        << (chosen.empty() ? ""
                           : "            chosen='" + chosen + "' choices='" + StepNames() + "'\n")
        << (switched.empty() ? ""
                             : "            switched='" + switched + "' states='" + states + "'\n")
        << "            words='" << words << "' takes_files=" << (takesFiles ? "1" : "") << '\n'
        << "            ;;\n";
}

// The first word of each verb, or the second ones of a family's.
std::string NextWords(const CLI::App& program) {
    std::string words;
    for (const CLI::App* verb : program.get_subcommands({}))
        Append(words, {verb->get_name()});
    return words;
}

void PrintHead(std::ostream& out, const std::string& families) {
    constexpr std::string_view kMark = "FAMILIES";
    std::string head = kHead;
    out << head.replace(head.find(kMark), kMark.size(), families);
}

}  // namespace

void PrintCompletion(std::ostream& out, const CLI::App& program) {
    std::vector<const CLI::App*> families;
    std::vector<const CLI::App*> askers;  // verbs that take the name of one
    std::string names;
    for (const CLI::App* verb : program.get_subcommands({})) {
        const std::vector<WordText> arguments = TextOf(*verb).arguments;
        if (!arguments.empty() && arguments.front().value == kVerbValue) askers.push_back(verb);
        if (!IsFamily(*verb)) continue;
        families.push_back(verb);
        Append(names, {verb->get_name()});
    }
    for (const CLI::App* asker : askers) {
        Append(names, {asker->get_name()});
        for (const CLI::App* family : families)
            Append(names, {asker->get_name() + ' ' + family->get_name()});
    }
    PrintHead(out, names);
    PrintCase(out, TextOf(program), "''", NextWords(program));
    for (const CLI::App* family : families) {
        PrintCase(out, TextOf(*family), family->get_name(), NextWords(*family));
        for (const CLI::App* asker : askers)
            PrintCase(out, TextOf(*asker), '\'' + NameOf(*asker) + ' ' + family->get_name() + '\'',
                      NextWords(*family));
    }
    for (const VerbText& verb : TextsOfVerbs(program)) {
        const bool takesVerb =
            !verb.arguments.empty() && verb.arguments.front().value == kVerbValue;
        PrintCase(out, verb, '\'' + verb.name + '\'', takesVerb ? NextWords(program) : "");
    }
    out << kTail;
}

}  // namespace headless
