#include "adaptor/install_paths.h"

#include <algorithm>
#include <array>

#include "platform/win32.h"
#include "tvl/installation.h"
#include "tvl/log.h"

namespace {

constexpr const char* kDocumentsKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr const char* kDocumentsValue = "Personal";
constexpr const char* kProductFolder = "\\Tarvo Works\\Lumiset\\";

constexpr DWORD kValueCapacity = TVL::kLongestInstallPath + 1;  // bytes, with the NUL

// What the registry tells of a text. A key that could not be opened is null, with which everything
// further fails.
struct RegistryText {
    RegistryText(HKEY root, const char* path, const char* name) {
        std::array<BYTE, kValueCapacity> buffer{};
        DWORD size = kValueCapacity;
        HKEY key = nullptr;
        isKeyThere = RegOpenKeyExA(root, path, 0, KEY_READ, &key) == ERROR_SUCCESS;
        status = RegQueryValueExA(key, name, nullptr, nullptr, buffer.data(), &size);
        RegCloseKey(key);
        if (status != ERROR_SUCCESS) return;
        const auto end = buffer.begin() + std::min(size, kValueCapacity);
        text.assign(buffer.begin(), std::find(buffer.begin(), end, BYTE{0}));
    }

    bool isKeyThere;
    LSTATUS status;    // of the value
    std::string text;  // up to its NUL, which not every value has; empty if there is none to read
};

std::string NotFound(const char* report) {
    TVL::Log(TVL::Log::kError).Write(report);
    return {};
}

}  // namespace

std::string ReadInstallValue(const char* name) {
    return RegistryText(HKEY_LOCAL_MACHINE, TVL::kInstallKey, name).text;
}

bool IsInstallValueTooLong(const char* name) {
    return RegistryText(HKEY_LOCAL_MACHINE, TVL::kInstallKey, name).status == ERROR_MORE_DATA;
}

std::string FindDocumentsPath() {
    const RegistryText documents(HKEY_CURRENT_USER, kDocumentsKey, kDocumentsValue);
    if (!documents.isKeyThere) return NotFound("Unable to find my documents path");
    if (documents.status != ERROR_SUCCESS)
        return NotFound("Unable to find my documents registry key");
    return documents.text + kProductFolder;
}
