#include "platform/process.h"

#include <io.h>

#include <cstdio>
#include <cstdlib>

#include "platform/modules.h"
#include "platform/win32.h"

namespace platform {
namespace {

constexpr std::size_t kLongestPath = 32768;  // letters, the NUL included

std::filesystem::path FileOf(HMODULE module) {
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), kLongestPath);
    path.resize(length < kLongestPath ? length : 0);
    return path;
}

}  // namespace

std::string Variable(const char* name) {
    const std::wstring wideName = FromNarrow(name).native();
    std::wstring value;
    for (DWORD needed = 1; needed > value.size();) {
        value.resize(needed);
        needed = GetEnvironmentVariableW(wideName.c_str(), value.data(), needed);
        if (needed < value.size()) value.resize(needed);
    }
    return Shown(value);
}

// Of the run-time library, which hands it on to the system.
bool SetVariable(const char* name, const std::string& value) {
    return _putenv_s(name, value.c_str()) == 0;
}

std::filesystem::path ProgramFile() {
    return FileOf(nullptr);
}

std::filesystem::path FileOfModule(const void* address) {
    constexpr DWORD kOnlyLook =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(kOnlyLook, static_cast<LPCSTR>(address), &module)) return {};
    return FileOf(module);
}

bool IsErrorStreamATerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

}  // namespace platform
