#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

// What people are told of a scene file: what is wrong with it, and what its readers said.
namespace headless {

// What is wrong with a scene file, in one line.
class SceneFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Throws SceneFileError: "FILE: at byte N: what".
[[noreturn]] void FailAt(const std::string& path, std::uint64_t position, const std::string& what);

// What a plug-in said of the exception that is being handled; it may have thrown anything.
std::string ThrownWords();

inline constexpr std::size_t kQuotedBytes = 40;

// In quotes, with line feeds and whatever else is not printed told by escapes, and cut short.
std::string Quoted(std::string_view text);

}  // namespace headless
