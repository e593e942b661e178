#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <sstream>

#include "command/output.h"
#include "command/verb_options.h"
#include "command/verb_texts.h"
#include "command/verbs.h"
#include "command/wrong_words.h"

namespace headless {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kTextColumn = 26;  // of rows
constexpr std::size_t kRowIndent = 2;

// Blanks part words. What does not fit goes on in a new line behind `indent` blanks; `more` ends
// the line ahead of that. The first line has used up `used` columns already.
std::string Wrapped(const std::string& text, std::size_t used, std::size_t indent,
                    const std::string& more = "") {
    std::string wrapped;
    std::istringstream words(text);
    std::size_t column = used;
    bool isFirst = true;
    for (std::string word; words >> word; isFirst = false) {
        if (!isFirst && column + 1 + word.size() + more.size() > kColumns) {
            wrapped += more + '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += word.size();
    }
    return wrapped + '\n';
}

std::string HelpRow(const std::string& label, const std::string& text) {
    std::string row = std::string(kRowIndent, ' ') + label;
    if (row.size() + 2 > kTextColumn)
        row += '\n' + std::string(kTextColumn, ' ');
    else
        row.resize(kTextColumn, ' ');
    return row + Wrapped(text, kTextColumn, kTextColumn);
}

void PrintRows(std::ostream& out, const char* title, const std::vector<WordText>& words) {
    if (words.empty()) return;
    out << '\n' << title << ":\n";
    for (const WordText& word : words)
        out << HelpRow(word.label, word.text);
}

void PrintFoot(std::ostream& out, const std::string& foot) {
    if (!foot.empty()) out << '\n';
    for (const std::string& line : LinesOf(foot)) {
        if (const std::optional<WordText> row = RowOf(line))
            out << HelpRow(row->label, row->text);
        else if (IsTyped(line))
            out << "  " << Wrapped(line, kRowIndent, 2 * kRowIndent, " \\");
        else
            out << Wrapped(line, 0, 0);
    }
}

// The verbs of the program, by their groups; a verb has none.
void PrintVerbs(std::ostream& out, const CLI::App& program) {
    std::string group;
    for (const VerbText& verb : TextsOfVerbs(program)) {
        if (verb.group != group) out << '\n' << verb.group << ":\n";
        group = verb.group;
        out << HelpRow(verb.name, verb.Summary());
    }
}

// The parser itself would tell of the verb that was called.
std::string HelpOf(const CLI::App& verb) {
    const VerbText text = TextOf(verb);
    std::ostringstream out;
    out << Wrapped("Usage: " + text.usage, 0, 2 * kRowIndent) << '\n' << Wrapped(text.text, 0, 0);
    PrintVerbs(out, verb);
    PrintRows(out, "Arguments", text.arguments);
    PrintRows(out, "Options", text.options);
    PrintFoot(out, text.foot);
    return out.str();
}

class OwnHelp : public CLI::FormatterBase {
  public:
    std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override {
        return HelpOf(*app);
    }
};

void PrintHelp(const CLI::App& program, const std::vector<std::string>& words) {
    std::string name;
    for (const std::string& word : words)
        name += name.empty() ? word : ' ' + word;
    const CLI::App* const verb = name.empty() ? &program : FindVerb(program, name);
    if (verb == nullptr) throw NoVerb(program, name);
    std::cout << HelpOf(*verb);
}

}  // namespace

void UseOwnHelp(CLI::App& program) {
    program.formatter(std::make_shared<OwnHelp>());
    program.set_help_flag("-h,--help", "Print this help");
    program.footer("`" + std::string(kCommand) + " help VERB` tells all of a verb.\n\n" +
                   kExitStatusText + "\n\n" + kOnCores);
}

void AddHelpVerbs(CLI::App& app) {
    CLI::App* const help = AddVerb(app, kHelping, "help", "Explain a verb, or list them all.");
    const auto verb = std::make_shared<std::vector<std::string>>();
    help->add_option("VERB", *verb, "What to tell of; all verbs in short if none is named")
        ->expected(0, 2)
        ->type_name(kVerbValue);
    AddExample(*help, "help record");
    help->callback([&app, verb] { PrintHelp(app, *verb); });

    CLI::App* const manual =
        AddVerb(app, kHelping, "manual", "Print the page of the manual, to be read by man.");
    AddExample(*manual, "manual | man -l -");
    manual->callback([&app] { PrintManual(std::cout, app); });

    CLI::App* const completion =
        AddVerb(app, kHelping, "completion",
                "Print a script that has bash complete verbs, options and files.");
    AddExample(*completion,
               "completion >~/.local/share/bash-completion/completions/lumiset-headless");
    completion->callback([&app] { PrintCompletion(std::cout, app); });
}

}  // namespace headless
