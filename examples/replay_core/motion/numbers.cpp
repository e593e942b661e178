#include "replay_core/motion/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace replay {
namespace {

// from_chars knows no plus sign. What follows one must not be a second sign.
std::string_view WithoutPlus(std::string_view word) {
    const bool hasPlus = word.size() > 1 && word[0] == '+' && word[1] != '-';
    return hasPlus ? word.substr(1) : word;
}

template <typename Value>
std::optional<Value> ParseWhole(std::string_view word) {
    const std::string_view text = WithoutPlus(word);
    const char* const end = text.data() + text.size();
    Value value{};
    const auto [rest, status] = std::from_chars(text.data(), end, value);
    if (status != std::errc() || rest != end) return std::nullopt;
    return value;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view word) {
    const std::optional<double> number = ParseWhole<double>(word);
    // The comparison is false for what is not a number, too.
    if (!number || !(std::abs(*number) <= kLargestNumber)) return std::nullopt;
    return number;
}

std::optional<std::size_t> ParseCount(std::string_view word) {
    return ParseWhole<std::size_t>(word);
}

std::string NumberText(double number) {
    std::array<char, 32> text{};
    const auto [end, status] = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), end};
}

}  // namespace replay
