#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <limits>
#include <string_view>
#include <system_error>

namespace headless {

// Reads numbers with a mark between each two, and nothing else. What is no such text is an invalid
// argument. Out of range is what the type cannot hold; of floating point, also what is not finite
// in single precision, in which the host counts.
template <class Number, std::size_t Count>
std::errc ReadNumbers(std::string_view text, char mark, std::array<Number, Count>& numbers) {
    const char* at = text.data();
    const char* const end = at + text.size();
    std::errc outcome{};
    for (Number& number : numbers) {
        if (&number != numbers.data() && (at == end || *at++ != mark))
            return std::errc::invalid_argument;
        const auto [behind, error] = std::from_chars(at, end, number);
        if (error == std::errc::invalid_argument) return error;
        if (error != std::errc()) outcome = error;
        at = behind;
        if constexpr (std::floating_point<Number>) {
            if (std::isnan(number)) return std::errc::invalid_argument;
            if (std::abs(number) > std::numeric_limits<float>::max())
                outcome = std::errc::result_out_of_range;
        }
    }
    return at == end ? outcome : std::errc::invalid_argument;
}

}  // namespace headless
