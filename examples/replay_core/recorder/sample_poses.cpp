#include "replay_core/recorder/sample_poses.h"

#include <cstddef>
#include <vector>

#include "replay_core/motion/numbers.h"
#include "replay_core/recorder/csv.h"
#include "replay_core/recorder/transform_loan.h"
#include "replay_core/recorder/transform_parts.h"

namespace replay {
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
                        WholeFile& file) {
    const std::vector<std::string> names = FieldsWithNames(nodes);
    file.Write("seconds,node,x,y,z,qx,qy,qz,qw,sx,sy,sz\n");
    std::string row;
    for (std::size_t time = 0; time < times.count && !file.HasFailed(); ++time) {
        const double seconds = times.At(time);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const TransformLoan snapshot(*nodes[i], seconds);
            if (!snapshot)
                return "\"" + nodes[i]->GetNodeName() + "\" is not in the scene any more";
            const TransformParts parts = PartsOf(snapshot->GetWorldTransform());
            ((row = NumberText(seconds)) += ',') += names[i];
            AppendNumbers(row, parts.translation);
            AppendNumbers(row, parts.rotation);
            AppendNumbers(row, parts.scale);
            file.Write(row += '\n');
        }
    }
    return {};
}

}  // namespace replay
