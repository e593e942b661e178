#include "seat/find_core.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/win32.h"
#include "tvl/installation.h"

namespace headless {
namespace {

namespace fs = std::filesystem;

bool IsThere(const std::string& file) {
    std::error_code error;
    return fs::exists(platform::FromNarrow(file), error);
}

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
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, TVL::kInstallKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    std::optional<std::string> path = Read(key, TVL::kInstallValue);
    RegCloseKey(key);
    return path;
}

// The plug-in does not read a longer one at all.
std::string WhyTooLong(const std::string& folder) {
    if (folder.size() <= TVL::kLongestInstallPath) return {};
    return " is longer than " + std::to_string(TVL::kLongestInstallPath) + " bytes: " + folder;
}

FoundPath BesideProgram(const std::string& whyNotInstalled) try {
    std::string core = platform::FileToLoad(platform::BesideProgram("") + TVL::kCoreLibrary);
    if (IsThere(core)) return {std::move(core), {}};
    return {{}, whyNotInstalled + ", and no " + core};
} catch (const std::runtime_error& error) {
    return {{}, whyNotInstalled + ", and " + error.what()};
}

}  // namespace

FoundPath FindInstalledCore() {
    const std::optional<std::string> folder = InstallPath();
    const std::string value = std::string("\"") + TVL::kInstallValue + '"';
    if (!folder)
        return BesideProgram("no " + value + " in HKEY_LOCAL_MACHINE\\" + TVL::kInstallKey);
    const std::string tooLong = WhyTooLong(*folder);
    if (!tooLong.empty()) return {{}, value + " of the install key" + tooLong};
    return {platform::FileToLoad(*folder + TVL::kCoreLibrary), {}};
}

FoundPath FindSeatFolder() {
    static const char here = 0;
    const fs::path folder = platform::FileOfModule(&here).parent_path();
    for (const fs::path& place : {folder / "seat", folder.parent_path() / "bin" / "seat"}) {
        std::string narrow = platform::ToNarrow(place);
        if (narrow.empty() || !IsThere(SeatModule(narrow))) continue;
        const std::string tooLong = WhyTooLong(narrow);
        if (!tooLong.empty()) return {{}, "the folder of the seat" + tooLong};
        return {std::move(narrow), {}};
    }
    return {{}, "there is no seat for a Core beside " + platform::Shown(folder)};
}

std::string SeatModule(const std::string& seatFolder) {
    return platform::FileToLoad(seatFolder + TVL::kCoreLibrary);
}

}  // namespace headless
