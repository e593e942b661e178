#include "interchange/flaws.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace interchange {
namespace {

// Below these nobody sees it, and rounding alone reaches some hundredths of them.
constexpr double kSeenScale = 1e-4;  // of the node's size
constexpr double kSeenShear = 1e-4;  // cosine between two axes

constexpr double kDegreesInRadian = 180 / std::numbers::pi;  // in a radian

double LengthOf(const double* row) {
    return std::hypot(row[0], row[1], row[2]);
}

// Without what nobody reads of it.
std::string Rounded(double number) {
    constexpr double kParts = 1e4;
    return NumberText(std::round(number * kParts) / kParts);
}

}  // namespace

bool IsFinite(const TVL::CMatrix4& matrix) {
    return std::ranges::all_of(matrix.rows, [](const auto& row) {
        return std::ranges::all_of(row, [](double number) { return std::isfinite(number); });
    });
}

std::string NumberText(double number) {
    char text[400];  // the least double above 0 has 324 decimals before its first digit
    return {text, std::to_chars(text, text + sizeof text, number, std::chars_format::fixed).ptr};
}

std::string LostStart(const Take& take) {
    return "the time at which it begins, " + Rounded(take.startSeconds) +
           " s: in the file it begins at 0 s";
}

FlawNotes::FlawNotes(const Take& take) : take_(take), notes_(kFlaws * take.nodes.size()) {}

void FlawNotes::Tell(std::size_t node, Flaw flaw, double much, double seconds, int axis) {
    Note& note = notes_[kFlaws * node + static_cast<std::size_t>(flaw)];
    if (note.worst == 0) note.firstSeconds = seconds;
    if (std::abs(much) > std::abs(note.worst)) note = {much, seconds, note.firstSeconds, axis};
}

void FlawNotes::Look(std::size_t node, const TVL::CMatrix4& world, double seconds) {
    if (!IsFinite(world)) {
        Tell(node, Flaw::kNowhere, 1, seconds);
        return;
    }
    for (int axis = 0; axis < 3; ++axis) {
        const double more = LengthOf(world[axis]) - 1;
        if (std::abs(more) > kSeenScale) Tell(node, Flaw::kScale, more, seconds, axis);
    }
    const double skew = SkewOf(world);
    if (skew > kSeenShear) Tell(node, Flaw::kShear, skew, seconds);
    const double volume = TVL::Determinant(world);
    if (volume < 0) Tell(node, Flaw::kMirror, 1, seconds);
    if (volume == 0) Tell(node, Flaw::kFlat, 1, seconds);
}

std::vector<std::string> FlawNotes::Words(const std::vector<Flaw>& flaws) const {
    std::vector<std::string> words;
    for (const Flaw flaw : flaws) {
        for (std::size_t node = 0; node < take_.nodes.size(); ++node) {
            const Note& note = notes_[kFlaws * node + static_cast<std::size_t>(flaw)];
            if (note.worst == 0) continue;
            constexpr const char* kWhat[] = {"scale", "shear", "mirroring", "flatness",
                                             "lost place"};
            const std::string most = ", most at " + Rounded(note.seconds) + " s (";
            std::string& line = words.emplace_back();
            line = std::string("the ") + kWhat[static_cast<std::size_t>(flaw)] + " of \"" +
                   take_.nodes[node].name + "\", first at " + Rounded(note.firstSeconds) + " s";
            if (flaw == Flaw::kScale)
                line += most + Rounded(1 + note.worst) + " times along its " +
                        static_cast<char>('x' + note.axis) + " axis)";
            if (flaw == Flaw::kShear)
                line += most + "two axes are " +
                        Rounded(kDegreesInRadian * std::asin(std::min(note.worst, 1.0))) +
                        " degrees from at right angles)";
        }
    }
    return words;
}

}  // namespace interchange
