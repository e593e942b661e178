#include "headless/scene_file/file_errors.h"

#include <array>
#include <cstdio>
#include <exception>
#include <new>

namespace headless {
namespace {

bool IsPrinted(char c) {
    return c >= ' ' && c <= '~';
}

std::string Escaped(char c) {
    if (c == '\n') return "\\n";
    if (c == '"' || c == '\\') return {'\\', c};
    if (IsPrinted(c)) return {c};
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned char>(c));
    return text.data();
}

}  // namespace

void FailAt(const std::string& path, std::uint64_t position, const std::string& what) {
    throw SceneFileError(path + ": at byte " + std::to_string(position) + ": " + what);
}

std::string ThrownWords() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "there is not enough memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown exception";
    }
}

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text.substr(0, kQuotedBytes))
        quoted += Escaped(c);
    return quoted + (text.size() > kQuotedBytes ? "...\"" : "\"");
}

}  // namespace headless
