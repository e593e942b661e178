#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Words for people about what a file holds and what its readers said.
namespace headless {

// What a plug-in said of the exception that is being handled; it may have thrown anything.
std::string ThrownWords();

inline constexpr std::size_t kQuotedBytes = 40;

// In quotes, with line feeds and whatever else is not printed told by escapes, and cut short.
std::string Quoted(std::string_view text);

}  // namespace headless
