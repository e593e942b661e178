#include <cmath>
#include <cstddef>
#include <vector>

#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/loans.h"
#include "replay_core/recorder/look.h"
#include "replay_core/recorder/text_file.h"
#include "tvl/transform_parts.h"

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

namespace {

void AppendNumbers(std::string& row, std::span<const double> numbers) {
    for (const double number : numbers)
        (row += ',') += NumberText(number);
}

std::vector<std::string> FieldsWithNames(std::span<TVL::CoreNode* const> nodes) {
    std::vector<std::string> fields;
    for (TVL::CoreNode* node : nodes)
        fields.push_back(CsvField(node->GetName()));
    return fields;
}

}  // namespace

std::string SamplePoses(std::span<TVL::CoreNode* const> nodes, const SampleTimes& times,
                        TextFile& file, platform::ProgressLine& progress) {
    const std::vector<std::string> names = FieldsWithNames(nodes);
    file.Write("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n");
    std::string row;
    for (std::size_t time = 0; time < times.count && !file.HasFailed(); ++time) {
        const double seconds = times.At(time);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const TransformLoan snapshot(*nodes[i], seconds);
            if (!snapshot)
                return "\"" + nodes[i]->GetNodeName() + "\" is not in the scene any more";
            const TVL::TransformParts parts = TVL::PartsOf(snapshot->GetWorldTransform());
            ((row = NumberText(seconds)) += ',') += names[i];
            AppendNumbers(row, parts.translation);
            AppendNumbers(row, parts.rotation);
            AppendNumbers(row, parts.scale);
            file.Write(row += '\n');
        }
        if (!progress.Advance() && time + 1 < times.count)
            return "the sampling was stopped at time " + std::to_string(time + 1) + " of " +
                   std::to_string(times.count);
    }
    return {};
}

}  // namespace replay
