#include "command/steps.h"

#include <algorithm>

#include "command/exit_status.h"
#include "command/output.h"
#include "command/written_files.h"
#include "command/wrong_words.h"

namespace headless {
namespace {

// As much of a step as a line can tell; letters are not cut in two.
std::string Shortened(const std::string& text) {
    constexpr std::size_t kLongest = 80;
    if (text.size() <= kLongest) return InTable(text);
    std::size_t end = kLongest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return InTable(text.substr(0, end)) + "...";
}

[[noreturn]] void RefuseName(const std::string& name) {
    std::vector<std::string> names;
    for (const StepKind& kind : StepKinds()) {
        names.emplace_back(kind.name);
        names.emplace_back(kind.name.substr(0, kind.name.find(' ')));
    }
    Refuse("there is no step \"" + Shortened(name) + '"' + TellNearest(name, names) +
           " (run --help lists them)");
}

Step ReadStep(const std::string& text, std::span<const std::string> words) {
    std::string name = words.front();
    words = words.subspan(1);
    if (name == "expect" && !words.empty()) {
        name += ' ' + words.front();
        words = words.subspan(1);
    }
    const auto kind = std::ranges::find(StepKinds(), name, &StepKind::name);
    if (kind == StepKinds().end()) RefuseName(name);
    return {.text = text, .title = {}, .kind = &*kind, .words = ReadWords(*kind, words)};
}

// Reads steps one behind another and numbers them.
class StepReader {
  public:
    std::vector<Step> steps;

    // False if the text holds no step.
    bool Read(const std::string& place, const std::string& text) {
        const std::string title =
            place + "step " + std::to_string(steps.size() + 1) + " (" + Shortened(text) + ")";
        try {
            const std::vector<std::string> words = SplitIntoWords(text);
            if (words.empty()) return false;
            steps.push_back(ReadStep(text, words));
        } catch (const Failure& failure) {
            throw Failure(title + ": " + failure.what(), failure.Status());
        }
        steps.back().title = title;
        return true;
    }
};

// Without the blanks around it, and the mark by which an editor shows its encoding.
std::string Trimmed(std::string line) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr std::string_view kAround = " \t\r";
    if (line.starts_with(kMark)) line.erase(0, kMark.size());
    line.erase(0, line.find_first_not_of(kAround));
    line.erase(line.find_last_not_of(kAround) + 1);
    return line;
}

}  // namespace

const std::vector<StepKind>& StepKinds() {
    static const std::vector<StepKind> all = [] {
        std::vector<StepKind> kinds;
        for (const auto steps : {PanelSteps(), SceneSteps(), ExpectationSteps()})
            kinds.insert(kinds.end(), steps.begin(), steps.end());
        return kinds;
    }();
    return all;
}

std::string Title(const StepKind& kind) {
    return std::string(kind.name) + (kind.arguments.empty() ? "" : " ") +
           std::string(kind.arguments);
}

std::vector<Step> StepsOfOptions(const std::vector<std::string>& texts) {
    StepReader reader;
    for (const std::string& text : texts)
        if (!reader.Read("", Trimmed(text)))
            Refuse("step " + std::to_string(reader.steps.size() + 1) + " says nothing");
    return std::move(reader.steps);
}

std::vector<Step> StepsOfScript(const std::string& path) {
    StepReader reader;
    std::size_t number = 0;
    for (const std::string& line : LinesOf(TextOfFile(path)))
        reader.Read(path + ':' + std::to_string(++number) + ": ", Trimmed(line));
    if (reader.steps.empty()) Refuse(path + ": there is no step in it");
    return std::move(reader.steps);
}

}  // namespace headless
