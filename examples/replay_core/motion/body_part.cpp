#include "replay_core/motion/body_part.h"

#include <algorithm>
#include <array>
#include <string>

namespace replay {
namespace {

bool IsLower(char c) {
    return c >= 'a' && c <= 'z';
}

bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

char Lower(char c) {
    return IsUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return Lower(c); });
    return lower;
}

bool IsSeparator(char c) {
    return std::string_view("_.- ").find(c) != std::string_view::npos;
}

// Of "LHip" and "lHip" the first letter stands apart, of "LHIP" and "Lhip" it does not.
bool IsFirstLetterApart(std::string_view name) {
    if (name.size() < 2) return false;
    if (IsSeparator(name[1])) return true;
    return IsUpper(name[1]) && (IsLower(name[0]) || (name.size() > 2 && IsLower(name[2])));
}

bool IsLastLetterApart(std::string_view name) {
    return name.size() > 2 && IsSeparator(name[name.size() - 2]);
}

BodySide SideOfLetter(char letter) {
    switch (Lower(letter)) {
        case 'l':
            return BodySide::kLeft;
        case 'r':
            return BodySide::kRight;
        default:
            return BodySide::kMiddle;
    }
}

}  // namespace

BodySide SideOf(std::string_view jointName) {
    const std::string_view name = jointName.substr(jointName.rfind(':') + 1);
    const std::string lower = Lower(name);
    if (lower.find("left") != std::string::npos) return BodySide::kLeft;
    if (lower.find("right") != std::string::npos) return BodySide::kRight;
    BodySide side = BodySide::kMiddle;
    if (IsFirstLetterApart(name)) side = SideOfLetter(name.front());
    if (side == BodySide::kMiddle && IsLastLetterApart(name)) side = SideOfLetter(name.back());
    return side;
}

bool IsFoot(std::string_view jointName) {
    const std::string lower = Lower(jointName);
    constexpr std::array<std::string_view, 4> kWords = {"foot", "toe", "heel", "ankle"};
    return std::ranges::any_of(
        kWords, [&lower](std::string_view word) { return lower.find(word) != std::string::npos; });
}

}  // namespace replay
