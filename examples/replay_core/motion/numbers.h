#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace replay {

// Numbers as captures and stored state spell them, without regard to the locale. The whole word
// must be the number.

// No length, angle or time of a capture comes near this. What is below it stays finite when it is
// summed down the deepest chain of joints, also in float.
inline constexpr double kLargestNumber = 1e30;

// A sign or none, digits with or without a point (".5", "5."), an exponent or none. Numbers that
// are not finite or are beyond kLargestNumber on either side are none.
std::optional<double> ParseNumber(std::string_view word);

// Decimal digits, with a plus sign or none.
std::optional<std::size_t> ParseCount(std::string_view word);

// The shortest decimal form that reads back as the same number.
std::string NumberText(double number);

}  // namespace replay
