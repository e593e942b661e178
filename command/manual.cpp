#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <ostream>

#include "command/output.h"
#include "command/verb_texts.h"
#include "platform/registry.h"
#include "tvl/installation.h"

// The manual page is written in the macros of man(7).
namespace headless {
namespace {

// A text as the typesetter is to take it: it would set a hyphen for a minus, and obey a line that
// begins with a full stop or a quote.
std::string Roff(const std::string& text) {
    std::string plain = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\')
            plain += "\\e";
        else if (c == '-')
            plain += "\\-";
        else
            plain += c;
    }
    return plain;
}

// The title of a section or a label, which stands in quotes.
std::string InQuotes(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\\(dq") : Roff(std::string(1, c));
    return quoted + '"';
}

void PrintPageWords(std::ostream& out, const std::vector<WordText>& words) {
    for (const WordText& word : words)
        out << ".TP\n.B " << InQuotes(word.label) << '\n' << Roff(word.text) << '\n';
}

// Lines that are typed are set as they stand.
void PrintLines(std::ostream& out, const std::vector<std::string>& lines) {
    bool isOpen = false;
    for (const std::string& line : lines) {
        if (IsTyped(line) != isOpen) out << (isOpen ? ".EE\n" : ".PP\n.EX\n");
        isOpen = IsTyped(line);
        if (const std::optional<WordText> row = RowOf(line))
            PrintPageWords(out, {*row});
        else
            out << (line.empty() ? ".PP" : Roff(line)) << '\n';
    }
    if (isOpen) out << ".EE\n";
}

void PrintVerb(std::ostream& out, const VerbText& verb) {
    out << ".SS " << InQuotes(verb.usage) << '\n' << Roff(verb.text) << '\n';
    PrintPageWords(out, verb.arguments);
    PrintPageWords(out, verb.options);
    out << ".PP\n";
    PrintLines(out, LinesOf(verb.foot));
}

void PrintEnvironment(std::ostream& out) {
    PrintPageWords(out, {{.label = TVL::kTraceVariable,
                          .text = "A file to which the plug-in appends its trace."},
                         {.label = platform::kRegistryVariable,
                          .text = "A registry file (.reg) that tells where the Core is installed "
                                  "and where the user's documents are, in place of the one beside "
                                  "the program."},
                         {.label = "TMPDIR", .text = "The folder for temporary files."}});
}

}  // namespace

void PrintManual(std::ostream& out, const CLI::App& program) {
    const VerbText text = TextOf(program);
    const std::vector<VerbText> verbs = TextsOfVerbs(program);
    out << ".TH LUMISET\\-HEADLESS 1 \"\" " << InQuotes(program.version()) << '\n'
        << ".SH NAME\n"
        << Roff(kCommand) << " \\- " << Roff(text.Summary()) << '\n'
        << ".SH SYNOPSIS\n.B " << InQuotes(text.usage) << '\n'
        << ".SH DESCRIPTION\n"
        << Roff(text.text) << '\n';
    PrintPageWords(out, text.options);
    out << ".SH VERBS\n";
    for (const VerbText& verb : verbs)
        PrintVerb(out, verb);
    out << ".SH ENVIRONMENT\n";
    PrintEnvironment(out);
    out << ".SH EXIT STATUS\n" << Roff(kExitStatusText) << '\n' << ".SH EXAMPLES\n";
    std::vector<std::string> examples;
    for (const VerbText& verb : verbs)
        std::ranges::copy_if(LinesOf(verb.foot), std::back_inserter(examples), &IsTyped);
    PrintLines(out, examples);
    out << ".SH SEE ALSO\n" << Roff(kOnCores) << '\n';
}

}  // namespace headless
