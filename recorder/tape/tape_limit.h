#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

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
    if (text.empty() || text.find_first_not_of("0123456789") != text.npos) return std::nullopt;
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() / factor;
    std::uint64_t number = 0;
    for (const char digit : text) {
        const auto value = static_cast<std::uint64_t>(digit - '0');
        if (number > (most - value) / 10) return std::nullopt;
        number = number * 10 + value;
    }
    return number * factor;
}

}  // namespace recorder
