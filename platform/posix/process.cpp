#include "platform/process.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "platform/testing.h"

namespace platform {
namespace {

std::optional<DWORD> standingAt;

}  // namespace

std::string Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

bool SetVariable(const char* name, const std::string& value) {
    return (value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1)) == 0;
}

// Words are bytes, of which none is lost.
std::string LostArgument() {
    return {};
}

bool IsErrorStreamATerminal() {
    return isatty(STDERR_FILENO) != 0;
}

std::filesystem::path ProgramFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

void SetTickCount(DWORD milliseconds) {
    standingAt = milliseconds;
}
void ClearTickCount() {
    standingAt.reset();
}

}  // namespace platform

extern "C" DWORD GetTickCount() {
    if (platform::standingAt) return *platform::standingAt;
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<DWORD>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}
