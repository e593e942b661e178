#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace recorder {

// Bytes as a person writes them: a whole number, with K, M or G behind it for 1,024 of what comes
// before each. Nothing if it is none, or does not fit.
inline std::optional<std::uint64_t> ReadBytes(std::string_view text) {
    constexpr std::string_view kUnits = "KMG";
    std::uint64_t factor = 1;
    const std::size_t unit = text.empty() ? kUnits.npos : kUnits.find(text.back());
    if (unit != kUnits.npos) {
        factor = std::uint64_t{1} << (10 * (unit + 1));
        text.remove_suffix(1);
    }
    std::uint64_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc() || end != last) return std::nullopt;
    if (number > std::numeric_limits<std::uint64_t>::max() / factor) return std::nullopt;
    return number * factor;
}

}  // namespace recorder
