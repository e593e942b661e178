#include "bench/table.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace {

struct Words {
    const char* name;  // for other programs
    const char* unit;
};

// In the order of Figure.
constexpr Words kFigureWords[] = {{"", ""},
                                  {"ratio", " x"},
                                  {"nanoseconds", " ns"},
                                  {"allocations", " allocations"},
                                  {"bytes", " bytes"},
                                  {"growth", " growth"},
                                  {"instructions", " instructions"}};

Words WordsOf(Figure figure) {
    return kFigureWords[static_cast<std::size_t>(figure)];
}

std::string IfKnown(std::optional<double> number) {
    return number ? Short(*number) : "";
}

std::string ToReach(const Target& target) {
    return "<= " + Short(target.atMost) + WordsOf(target.figure).unit;
}

std::string ToReach(const Row& row) {
    std::string all;
    for (const Target* target : row.targets)
        all += (all.empty() ? "" : ", ") + ToReach(*target);
    return all;
}

const char* Verdict(const Row& row) {
    if (row.targets.empty()) return "";
    return row.IsMet() ? "yes" : "NO";
}

std::string NameOf(const Row& row) {
    const std::string size = row.ours->size.empty() ? "" : ", " + row.ours->size;
    return row.ours->work + size + (row.peer ? ", beside " + row.peer->who : "");
}

constexpr int kTextWidths[] = {36, 9, 14};
constexpr int kNumberWidth = 10;
constexpr int kGap = 3;

void PrintLine(std::ostream& out, const std::vector<std::string>& texts,
               const std::vector<std::string>& numbers, const std::string& toReach,
               const std::string& isMet) {
    out << std::left;
    for (std::size_t i = 0; i < texts.size(); ++i)
        out << std::setw(kTextWidths[i]) << texts[i];
    out << std::right;
    for (const std::string& number : numbers)
        out << std::setw(kNumberWidth) << number;
    out << std::setw(kGap) << "" << toReach << (isMet.empty() ? "" : "  ") << isMet << '\n';
}

void PrintShortfalls(std::ostream& out, const std::vector<Row>& rows) {
    std::size_t met = 0;
    std::size_t all = 0;
    out << "\nFalls short:\n";
    for (const Row& row : rows) {
        for (const Target* target : row.targets) {
            ++all;
            if (row.IsMet(*target)) {
                ++met;
                continue;
            }
            out << "  " << NameOf(row) << ": " << IfKnown(row.Of(target->figure)) << ", "
                << ToReach(*target) << '\n';
        }
    }
    out << "Reached: " << met << " of " << all << " targets\n";
}

nlohmann::json JsonOf(const Row& row) {
    nlohmann::json object = {{"work", row.ours->work},
                             {"nanoseconds", row.ours->nanoseconds},
                             {"allocations", row.ours->allocations},
                             {"met", row.IsMet()}};
    if (!row.ours->size.empty()) object["size"] = std::stoll(row.ours->size);
    if (row.ours->bytes) object["bytes"] = *row.ours->bytes;
    if (row.growth) object["growth"] = *row.growth;
    if (row.peer) {
        object["peer"] = row.peer->who;
        object["peer_nanoseconds"] = row.peer->nanoseconds;
        object["ratio"] = *row.Of(Figure::kRatio);
    }
    for (const Target* target : row.targets)
        object["at_most"][WordsOf(target->figure).name] = target->atMost;
    return object;
}

}  // namespace

// With three digits that count.
std::string Short(double number) {
    std::ostringstream text;
    const double size = std::abs(number);
    const int decimals = size >= 100 || size == 0 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3;
    text << std::fixed << std::setprecision(decimals) << number;
    return text.str();
}

void PrintTable(std::ostream& out, const std::vector<Row>& rows) {
    out << "\nFor one operation: medians, and our time in the peer's (below 1 is faster).\n\n";
    PrintLine(out, {"work", "size", "peer"},
              {"ours, ns", "peer, ns", "ratio", "growth", "allocs", "bytes"}, "to reach", "met");
    for (const Row& row : rows) {
        const auto peers = row.peer ? std::optional(row.peer->nanoseconds) : std::nullopt;
        PrintLine(out, {row.ours->work, row.ours->size, row.peer ? row.peer->who : ""},
                  {Short(row.ours->nanoseconds), IfKnown(peers), IfKnown(row.Of(Figure::kRatio)),
                   IfKnown(row.growth), Short(row.ours->allocations), IfKnown(row.ours->bytes)},
                  ToReach(row), Verdict(row));
    }
    PrintShortfalls(out, rows);
}

void PrintUnmeasured(std::ostream& out, const std::vector<Row>& rows) {
    out << "Not measured:\n";
    for (const Target& target : Targets()) {
        const bool isMeasured =
            target.figure == Figure::kNone || std::ranges::any_of(rows, [&](const Row& row) {
                return std::ranges::find(row.targets, &target) != row.targets.end();
            });
        if (!isMeasured)
            out << "  " << target.work << (*target.peer ? ", beside " : "") << target.peer << ": "
                << ToReach(target) << '\n';
    }
}

std::string ToJson(const std::vector<Row>& rows) {
    nlohmann::json array = nlohmann::json::array();
    for (const Row& row : rows)
        array.push_back(JsonOf(row));
    return array.dump(2) + "\n";
}
