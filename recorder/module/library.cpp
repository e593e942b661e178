#include "recorder/module/library.h"

#include <system_error>

#if defined(_WIN32)
#include "platform/win32.h"
#include "platform/windows/last_error.h"
#else
#include <dlfcn.h>
#endif

namespace recorder {

#if defined(_WIN32)

std::string Library::Load(const std::filesystem::path& path) {
    std::filesystem::path file = path;
    handle_ = LoadLibraryW(file.make_preferred().c_str());
    if (handle_) return {};
    return platform::WordsForLastError();
}

Library::~Library() {
    if (handle_) FreeLibrary(static_cast<HMODULE>(handle_));
}

Library::AnyRoutine Library::Find(const char* name) const {
    return reinterpret_cast<AnyRoutine>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::filesystem::path FileOf(const void* address) {
    constexpr DWORD kOnlyLook =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    constexpr DWORD kLongestPath = 32768;  // letters, the NUL included
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(kOnlyLook, static_cast<LPCSTR>(address), &module)) return {};
    std::wstring path(kLongestPath, L'\0');
    const DWORD length = GetModuleFileNameW(module, path.data(), kLongestPath);
    path.resize(length < kLongestPath ? length : 0);
    return path;
}

#else

std::string Library::Load(const std::filesystem::path& path) {
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle_) return {};
    const char* const words = dlerror();
    return words ? words : "the system does not say why";
}

Library::~Library() {
    if (handle_) dlclose(handle_);
}

Library::AnyRoutine Library::Find(const char* name) const {
    return reinterpret_cast<AnyRoutine>(dlsym(handle_, name));
}

std::filesystem::path FileOf(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || !info.dli_fname) return {};
    std::error_code error;
    return std::filesystem::absolute(info.dli_fname, error);
}

#endif

}  // namespace recorder
