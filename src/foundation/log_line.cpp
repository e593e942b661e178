#include "foundation/log_line.h"

#include <array>
#include <cstddef>

namespace TVL {
namespace {

constexpr std::array<std::string_view, 4> kLevelWords = {
    "CRITICAL): ", "ERROR): ", "WARNING): ", "NOTICE): "};

void AppendPadded(std::string& line, long number, std::size_t digits) {
    const std::string text = std::to_string(number);
    if (text.size() < digits) line.append(digits - text.size(), '0');
    line += text;
}

void AppendMoment(std::string& line, std::chrono::sys_seconds moment) {
    const auto midnight = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day date(midnight);
    const std::chrono::hh_mm_ss time(moment - midnight);
    AppendPadded(line, static_cast<int>(date.year()), 4);
    AppendPadded(line, static_cast<long>(static_cast<unsigned>(date.month())), 2);
    AppendPadded(line, static_cast<long>(static_cast<unsigned>(date.day())), 2);
    line += ' ';
    AppendPadded(line, static_cast<long>(time.hours().count()), 2);
    line += ':';
    AppendPadded(line, static_cast<long>(time.minutes().count()), 2);
    line += ':';
    AppendPadded(line, static_cast<long>(time.seconds().count()), 2);
}

std::string_view LevelWord(std::int32_t level) {
    if (level < 0 || static_cast<std::size_t>(level) >= kLevelWords.size()) return {};
    return kLevelWords[static_cast<std::size_t>(level)];
}

}  // namespace

std::string FormatLogLine(std::chrono::sys_seconds moment, std::int32_t level, std::int32_t indent,
                          std::string_view message) {
    std::string line;
    AppendMoment(line, moment);
    line += " (";
    line += LevelWord(level);
    if (indent >= 0) line.append(static_cast<std::size_t>(indent) + 1, '\t');
    line += message;
    line += '\n';
    return line;
}

}  // namespace TVL
