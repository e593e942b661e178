#include "command/trace_tail.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "command/exit_status.h"
#include "command/output.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "tvl/installation.h"
#include "tvl/log.h"

namespace headless {
namespace {

constexpr std::array<std::string_view, 4> kLevelWords = {"CRITICAL", "ERROR", "WARNING", "NOTICE"};

constexpr std::string_view kMoment = "00000000 00:00:00 (";

bool BeginsWithMoment(std::string_view line) {
    const auto fits = [](char form, char c) {
        return form == '0' ? c >= '0' && c <= '9' : c == form;
    };
    return line.size() >= kMoment.size() &&
           std::equal(kMoment.begin(), kMoment.end(), line.begin(), fits);
}

// Of what follows the moment.
TraceLine ReadLine(std::string_view rest) {
    TraceLine line{TVL::Log::kTraffic, 0, {}};
    for (std::size_t level = 0; level < kLevelWords.size(); ++level) {
        const std::string word = std::string(kLevelWords[level]) + "): ";
        if (!rest.starts_with(word)) continue;
        line.level = static_cast<int>(level);
        rest.remove_prefix(word.size());
        break;
    }
    line.depth = std::min(rest.find_first_not_of('\t'), rest.size());
    line.text = rest.substr(line.depth);
    return line;
}

// A line that begins with no moment goes on with the message before it.
std::vector<TraceLine> ReadLines(const std::string& text) {
    std::vector<TraceLine> lines;
    for (const std::string& line : LinesOf(text)) {
        if (BeginsWithMoment(line))
            lines.push_back(ReadLine(std::string_view(line).substr(kMoment.size())));
        else if (!lines.empty())
            lines.back().text += ' ' + line;
    }
    return lines;
}

// Nothing is below what was written outside all scopes. What a scope writes of its own stands as
// deep as the message that opened it; the same once more is another one.
bool IsBelow(const TraceLine& line, const TraceLine& head) {
    if (head.depth == 0 || line.text == head.text) return false;
    return line.depth > head.depth || (line.depth == head.depth && line.level == head.level);
}

// Nothing here needs the user's documents.
bool IsNoWorry(std::string_view line) {
    return line.starts_with("Unable to find my documents ");
}

// With what is nested below it, which begins at the second of the lines.
std::string WorryOf(std::span<const TraceLine> lines) {
    const std::string& head = lines.front().text;
    std::string below;
    for (const TraceLine& line : lines.subspan(1))
        if (!IsNoWorry(line.text)) (below += below.empty() ? " (" : ", ") += line.text;
    if (IsNoWorry(head)) return {};
    return ForPeople(head + (below.empty() ? below : below + ")"));
}

std::uintmax_t SizeOf(const std::string& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(platform::FromNarrow(path), error);
    return error ? 0 : size;
}

}  // namespace

std::string ToText(const TraceLine& line) {
    const auto word = static_cast<std::size_t>(line.level);
    return (word < kLevelWords.size() ? std::string(kLevelWords[word]) + ": " : "") +
           std::string(2 * line.depth, ' ') + line.text;
}

std::vector<std::string> Worries(const std::vector<TraceLine>& lines) {
    std::vector<std::string> worries;
    for (std::size_t at = 0, end = 0; at < lines.size(); at = end) {
        end = at + 1;
        if (lines[at].level > TVL::Log::kWarning) continue;
        while (end < lines.size() && IsBelow(lines[end], lines[at]))
            ++end;
        std::string worry = WorryOf(std::span(lines).subspan(at, end - at));
        if (!worry.empty()) worries.push_back(std::move(worry));
    }
    return worries;
}

TraceTail::TraceTail() : path_(platform::Variable(TVL::kTraceVariable)) {
    if (!path_.empty()) {
        read_ = SizeOf(path_);
        return;
    }
    path_ = own_.emplace("").Path();
    platform::SetVariable(TVL::kTraceVariable, path_);
}

TraceTail::~TraceTail() {
    if (own_) platform::SetVariable(TVL::kTraceVariable, "");
}

std::vector<TraceLine> TraceTail::TakeNew() {
    const std::optional<std::string> text = NewText();
    if (!text) return {{TVL::Log::kError, 0, "the plug-in's trace cannot be read"}};
    return ReadLines(*text);
}

// Of a pipe or a terminal there would be no end.
std::optional<std::string> TraceTail::NewText() {
    const std::filesystem::path file = platform::FromNarrow(path_);
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return "";
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(read_));
    std::optional<std::string> text = RestOf(stream);
    if (text) read_ += text->size();
    return text;
}

}  // namespace headless
