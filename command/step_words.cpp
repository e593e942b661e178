#include <algorithm>

#include "command/exit_status.h"
#include "command/numbers.h"
#include "command/output.h"
#include "command/steps.h"

namespace headless {
namespace {

constexpr std::string_view kBlanks = " \t";

// Takes the word in quotes at the front of a text.
std::string TakeQuoted(std::string_view& text) {
    std::string word;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] != '"') {
            word += text[at];
        } else if (text.substr(at + 1).starts_with('"')) {
            word += text[at++];
        } else {
            text.remove_prefix(at + 1);
            if (text.empty() || kBlanks.find(text.front()) != std::string_view::npos) return word;
            Refuse("a word in quotes is followed by more than a blank");
        }
    }
    Refuse("a quote is not closed");
}

// Takes what stands ahead of the first blank.
std::string_view TakePlain(std::string_view& text) {
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    text.remove_prefix(word.size());
    return word;
}

void SkipBlanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

template <class Number, std::size_t Count>
std::array<Number, Count> Read(const std::string& word, char mark, const char* what) {
    std::array<Number, Count> numbers{};
    const std::errc error = ReadNumbers(word, mark, numbers);
    if (error == std::errc::invalid_argument) Refuse(Quoted(word) + " is not " + what);
    if (error != std::errc()) Refuse(Quoted(word) + " is out of range");
    return numbers;
}

MomentRange ReadMoments(const std::string& word) {
    constexpr char kWhat[] = "START:END or START:END:STEP in seconds";
    MomentRange range;
    const bool hasStep = std::ranges::count(word, ':') > 1;
    if (hasStep) {
        const auto [start, end, step] = Read<double, 3>(word, ':', kWhat);
        range = {start, end, step};
    } else {
        const auto [start, end] = Read<double, 2>(word, ':', kWhat);
        range = {start, end, 0};
    }
    if (range.end < range.start) Refuse(Quoted(word) + " ends before it starts");
    if (hasStep && range.step <= 0) Refuse(Quoted(word) + " has no step above 0");
    return range;
}

// By the argument that it stands for.
void Read(std::string_view argument, const std::string& word, StepWords& words) {
    if (argument == "N") {
        words.count = Read<std::size_t, 1>(word, ' ', "a whole number").front();
    } else if (argument == "SECONDS") {
        words.seconds = Read<double, 1>(word, ' ', "a number of seconds").front();
    } else if (argument == "TOLERANCE") {
        words.tolerance = Read<double, 1>(word, ' ', "a number of metres").front();
    } else if (argument == "X,Y,Z") {
        const auto [x, y, z] = Read<double, 3>(word, ',', "a place X,Y,Z in metres");
        words.place = {x, y, z};
    } else if (argument == "START:END[:STEP]") {
        words.moments = ReadMoments(word);
    } else {
        if (argument == "ID" && IsId(word)) Read<int, 1>(word, ' ', "the number of a control");
        if (argument == "FILE" && word.empty()) Refuse("the name of a file is empty");
        if (argument == "NAME" && word.empty()) Refuse("a name is empty");
        words.texts.push_back(word);
    }
}

}  // namespace

std::vector<std::string> SplitIntoWords(std::string_view line) {
    if (line.find('\0') != std::string_view::npos) Refuse("it holds a byte that is no text");
    std::vector<std::string> words;
    while (true) {
        SkipBlanks(line);
        if (line.empty() || line.front() == '#') return words;
        words.push_back(line.front() == '"' ? TakeQuoted(line) : std::string(TakePlain(line)));
    }
}

StepWords ReadWords(const StepKind& kind, std::span<const std::string> words) {
    StepWords read;
    std::size_t at = 0;
    std::string_view arguments = kind.arguments;
    while (SkipBlanks(arguments), !arguments.empty()) {
        std::string_view argument = TakePlain(arguments);
        const bool isOptional = argument.starts_with('[');
        const bool isRest = argument.ends_with("...");
        if (isOptional) argument = argument.substr(1, argument.size() - 2);
        if (isRest) argument.remove_suffix(3);
        if (at == words.size() && !isOptional)
            Refuse("it lacks " + std::string(at == 0 ? "" : "some of ") +
                   "what it needs: " + Title(kind));
        const std::size_t end = isRest ? words.size() : std::min(at + 1, words.size());
        for (; at < end; ++at)
            Read(argument, words[at], read);
    }
    if (at < words.size()) Refuse(Quoted(words[at]) + " is more than it takes: " + Title(kind));
    return read;
}

bool IsId(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace headless
