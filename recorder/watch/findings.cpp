#include "recorder/watch/findings.h"

#include <algorithm>
#include <array>
#include <functional>

#include "recorder/stream/record_reader.h"

namespace recorder {
namespace watching {
namespace {

constexpr auto kRules = std::to_array<WatchRule>({
#define WATCH_RULE(rule, name, text) {name, text},
    WATCH_RULES(WATCH_RULE)
#undef WATCH_RULE
});

// Beyond these, nodes are not told apart any more.
constexpr std::size_t kMostFindings = 4096;

}  // namespace

Finding& FindingList::At(Rule rule, const Place& place, std::string_view node) {
    if (findings_.size() >= kMostFindings) node = {};
    const std::string_view name = kRules[static_cast<std::size_t>(rule)].name;
    const std::size_t hash = std::hash<std::string_view>()(node) * 31 +
                             static_cast<std::size_t>(rule) * 256 +
                             static_cast<std::size_t>(place.operation);
    const auto [first, last] = places_.equal_range(hash);
    for (auto each = first; each != last; ++each) {
        Finding& finding = findings_[each->second];
        if (finding.rule == name && finding.operation == place.operation && finding.node == node)
            return finding;
    }
    findings_.push_back(
        {name, place.operation, std::string(node), {}, 0, place.call, place.milliseconds});
    places_.emplace(hash, findings_.size() - 1);
    return findings_.back();
}

}  // namespace watching

std::span<const WatchRule> WatchRules() {
    return watching::kRules;
}

namespace {

std::string_view TextOf(std::string_view rule) {
    const auto* const row = std::ranges::find(watching::kRules, rule, &WatchRule::name);
    return row == watching::kRules.end() ? std::string_view() : row->text;
}

}  // namespace

std::string Line(const Finding& finding) {
    std::string line(finding.rule);
    line.append(": ").append(RowOf(finding.operation).name);
    if (!finding.node.empty()) line += " on " + finding.node;
    line += finding.count == 1 ? ", once, at "
                               : ", " + std::to_string(finding.count) + " times, first at ";
    line += InSeconds(finding.firstMilliseconds) + " s (call " + std::to_string(finding.firstCall) +
            "): ";
    line.append(TextOf(finding.rule));
    return finding.about.empty() ? line : line + "; " + finding.about;
}

std::string Table(std::span<const Finding> findings) {
    using Row = std::array<std::string, 5>;
    std::vector<Row> rows{{"rule", "call", "node", "times", "first"}};
    for (const Finding& finding : findings)
        rows.push_back({std::string(finding.rule), std::string(RowOf(finding.operation).name),
                        finding.node, std::to_string(finding.count),
                        InSeconds(finding.firstMilliseconds) + " s, call " +
                            std::to_string(finding.firstCall)});
    if (rows.size() == 1) return {};
    std::array<std::size_t, 5> widths{};
    for (const Row& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    std::string table;
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            table += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
        table += row.back() + '\n';
    }
    return table;
}

}  // namespace recorder
