#include "replay_core/recorder/sample_times.h"

#include <cmath>

#include "replay_core/motion/numbers.h"

namespace replay {

std::optional<SampleTimes> ParseSampleTimes(std::string_view text) {
    constexpr double kRounding = 1e-6;  // of a step
    const std::size_t first = text.find(':');
    const std::size_t second = first == text.npos ? text.npos : text.find(':', first + 1);
    if (second == text.npos) return std::nullopt;
    const std::optional<double> start = ParseNumber(text.substr(0, first));
    const std::optional<double> end = ParseNumber(text.substr(first + 1, second - first - 1));
    const std::optional<double> step = ParseNumber(text.substr(second + 1));
    if (!start || !end || !step || !(*step > 0) || *end < *start) return std::nullopt;
    const double steps = std::floor((*end - *start) / *step + kRounding);
    if (!(steps < static_cast<double>(kMostSampleTimes))) return std::nullopt;
    return SampleTimes{*start, *step, static_cast<std::size_t>(steps) + 1};
}

}  // namespace replay
