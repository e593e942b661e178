#include <malloc.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "platform/testing.h"
#include "platform/win32.h"
// Come after <windows.h>, whose types they need.
#include <psapi.h>
#include <winternl.h>

namespace platform {
namespace {

std::string FileOf(HMODULE module) {
    std::array<char, 1024> path{};
    GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
    return path.data();
}

// The system loads modules of its own when it likes.
bool IsOfTheSystem(HMODULE module) {
    std::array<char, MAX_PATH> folder{};
    const UINT length = GetWindowsDirectoryA(folder.data(), MAX_PATH);
    return _strnicmp(FileOf(module).c_str(), folder.data(), length) == 0;
}

std::size_t CountOwnModules() {
    std::array<HMODULE, 512> modules{};
    DWORD bytes = 0;
    K32EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
    std::size_t count = 0;
    for (std::size_t at = 0; at < bytes / sizeof(HMODULE) && at < modules.size(); ++at)
        if (!IsOfTheSystem(modules[at])) ++count;
    return count;
}

// The program and what it is linked with.
const std::size_t modulesAtStart = CountOwnModules();

// Each thread with windows has some of the system's, for the input of letters.
bool IsForInput(HWND window) {
    std::array<char, 16> name{};
    GetClassNameA(window, name.data(), static_cast<int>(name.size()));
    return std::strncmp(name.data(), "IME", 3) == 0 ||
           std::strncmp(name.data(), "MSCTFIME", 8) == 0;
}

BOOL CALLBACK CountOne(HWND, LPARAM count) {
    ++*reinterpret_cast<std::size_t*>(count);
    return TRUE;
}

BOOL CALLBACK CountWithChildren(HWND window, LPARAM count) {
    if (IsForInput(window)) return TRUE;
    CountOne(window, count);
    EnumChildWindows(window, CountOne, count);
    return TRUE;
}

// What a handle of this process stands for; empty if it is none.
std::wstring Describe(HANDLE handle, OBJECT_INFORMATION_CLASS what) {
    alignas(std::max_align_t) std::array<std::byte, 2048> answer{};
    // Both answers begin with the text.
    const auto* const text = reinterpret_cast<const UNICODE_STRING*>(answer.data());
    const NTSTATUS status =
        NtQueryObject(handle, what, answer.data(), static_cast<ULONG>(answer.size()), nullptr);
    if (status < 0 || !text->Buffer) return {};
    return {text->Buffer, text->Length / sizeof(wchar_t)};
}

constexpr auto kNameOfObject = static_cast<OBJECT_INFORMATION_CLASS>(1);
constexpr auto kTypeOfObject = static_cast<OBJECT_INFORMATION_CLASS>(2);

// A key below one of the roots that are there instead of the real ones.
bool IsSubstituteKey(HANDLE handle) {
    if (Describe(handle, kTypeOfObject) != L"Key") return false;
    const std::wstring name = Describe(handle, kNameOfObject);
    const std::size_t place = name.find(L"\\Substitutes\\");
    const std::size_t root = place == std::wstring::npos ? place : name.find(L"\\hkey_", place);
    return root != std::wstring::npos && name.find(L'\\', root + 1) != std::wstring::npos;
}

}  // namespace

std::size_t RoomOfBlock(void* block) {
    return block ? _msize(block) : 0;
}

std::size_t CountLoadedModules() {
    return CountOwnModules() - modulesAtStart;
}

std::size_t CountWindows() {
    std::size_t count = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountWithChildren, reinterpret_cast<LPARAM>(&count));
    return count;
}

std::size_t CountOpenKeys() {
    constexpr std::uintptr_t kStep = 4;  // handles are multiples of it
    constexpr std::uintptr_t kFarthest = 0x4000;
    std::size_t count = 0;
    for (std::uintptr_t value = kStep; value < kFarthest; value += kStep)
        if (IsSubstituteKey(reinterpret_cast<HANDLE>(value))) ++count;
    return count;
}

}  // namespace platform
