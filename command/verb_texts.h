#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

// What there is to say of the command's words. It is read from the verbs as they were added to the
// parser, so that help, manual and completion tell the same of the same.
namespace headless {

inline constexpr char kCommand[] = "lumiset-headless";

// What is typed behind an option, or for an argument, where others know what can stand there.
inline constexpr char kFileValue[] = "FILE";
inline constexpr char kVerbValue[] = "VERB";
inline constexpr char kStepValue[] = "STEP";

// How the command ends, in words.
inline constexpr char kExitStatusText[] =
    "It ends with 0 when all was done; with 1 when it failed, which one line says, or recorded a "
    "take that is not as it was meant to be, or --watch=strict found something; with 2 when it was "
    "called wrongly. diff ends with 1 "
    "for a difference and with 2 for trouble.";

inline constexpr char kOnCores[] =
    "How to write a Core stands in writing-a-core.md, in share/doc/TarvoLumiset of the kit; the "
    "first one to copy in share/TarvoLumiset/examples.";

// An argument or an option.
struct WordText {
    std::string label;  // as a person types it: "-o, --output FILE", "SCENE", "OTHER..."
    std::string text;
    std::vector<std::string> names{};  // of an option, also those that are told as old ones
    std::string value{};  // what is typed behind an option: FILE, NUMBER; empty for none
    bool isFile = false;  // the value, or the argument
    std::string state{};  // what a switch can have behind a sign of equality
};

struct VerbText {
    std::string name;   // with that of its family, if it is of one
    std::string group;  // of verbs
    std::string usage;  // the whole line, without options that can be left out
    std::string text;   // sentences, of which the first one is the summary
    std::string foot;  // paragraphs; rows; and, with two blanks ahead of them, lines that are typed
    std::vector<WordText> arguments{};
    std::vector<WordText> options{};

    // Without the full stop.
    std::string Summary() const;
};

// `verb` may be the program as well.
VerbText TextOf(const CLI::App& verb);

// Those of a program or a family, in the order in which they were added, and each family as the
// verbs that it has.
std::vector<const CLI::App*> VerbsOf(const CLI::App& program);
std::vector<VerbText> TextsOfVerbs(const CLI::App& program);

// As it is typed: "tape info".
std::string NameOf(const CLI::App& verb);

// The verb or the family that is called so; null if there is none.
const CLI::App* FindVerb(const CLI::App& program, const std::string& name);

bool IsFamily(const CLI::App& verb);

// Of a line of a foot, of which an empty one parts two paragraphs.
bool IsTyped(const std::string& line);

// A row of a foot has a tab between a label and its text. Nothing if the line is none.
std::optional<WordText> RowOf(const std::string& line);

// Has the parser print our help, in lines of 80 columns at most, for the program and, since verbs
// take it over, for each verb that is added afterwards.
void UseOwnHelp(CLI::App& program);

// The page of the manual, for `man`.
void PrintManual(std::ostream& out, const CLI::App& program);

// What has bash complete the command's words. It is to be sourced.
void PrintCompletion(std::ostream& out, const CLI::App& program);

}  // namespace headless
