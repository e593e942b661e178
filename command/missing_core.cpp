#include "command/missing_core.h"

#include <optional>

#include "command/core_environment.h"
#include "platform/modules.h"
#include "platform/win32.h"

namespace headless {
namespace {

// Of any length.
std::optional<std::string> Read(HKEY key, const char* name) {
    DWORD size = 0;
    if (RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    std::string text(size, '\0');
    if (RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()),
                         &size) != ERROR_SUCCESS)
        return std::nullopt;
    return text.substr(0, text.find('\0'));
}

std::optional<std::string> InstallPath() {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kInstallKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    std::optional<std::string> path = Read(key, kInstallValue);
    RegCloseKey(key);
    return path;
}

// The system's word for a failure lasts no longer than to its next call, so that it is asked anew.
std::string WhyNotLoaded(const std::string& library) {
    const HMODULE module = LoadLibraryA(library.c_str());
    if (!module) return library + " cannot be loaded: " + platform::LastLoadFailure();
    FreeLibrary(module);
    return library + " could not be loaded at first";
}

}  // namespace

std::string WhyNoCore() {
    const std::optional<std::string> folder = InstallPath();
    const std::string value = std::string("\"") + kInstallValue + '"';
    if (!folder) return "no " + value + " in HKEY_LOCAL_MACHINE\\" + kInstallKey;
    if (folder->size() > kInstallValueRoom)
        return value + " of the install key is longer than " + std::to_string(kInstallValueRoom) +
               " bytes: " + *folder;
    return WhyNotLoaded(*folder + kCoreLibrary);
}

}  // namespace headless
