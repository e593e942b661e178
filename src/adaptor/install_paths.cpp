#include "adaptor/install_paths.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/win32.h"
#include "tvl/installation.h"
#include "tvl/log.h"

namespace {

constexpr const char* kDocumentsKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr const char* kDocumentsValue = "Personal";
constexpr const char* kProductFolder = "\\Tarvo Works\\Lumiset\\";

constexpr DWORD kValueCapacity = TVL::kLongestInstallPath + 1;  // bytes, with the NUL

// Open for reading as long as it lives.
class RegistryKey {
  public:
    RegistryKey(HKEY root, const char* path) {
        if (RegOpenKeyExA(root, path, 0, KEY_READ, &key_) != ERROR_SUCCESS) key_ = nullptr;
    }
    ~RegistryKey() {
        if (key_) RegCloseKey(key_);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    bool IsOpen() const { return key_ != nullptr; }

    // The value up to its NUL, which not every value has; none if it is missing or too long.
    std::optional<std::string> Read(const char* name) const {
        std::array<BYTE, kValueCapacity> buffer{};
        DWORD size = kValueCapacity;
        if (RegQueryValueExA(key_, name, nullptr, nullptr, buffer.data(), &size) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        const auto end = buffer.begin() + std::min(size, kValueCapacity);
        return std::string(buffer.begin(), std::find(buffer.begin(), end, BYTE{0}));
    }

    bool IsTooLong(const char* name) const {
        std::array<BYTE, kValueCapacity> buffer{};
        DWORD size = kValueCapacity;
        return RegQueryValueExA(key_, name, nullptr, nullptr, buffer.data(), &size) ==
               ERROR_MORE_DATA;
    }

  private:
    HKEY key_ = nullptr;
};

std::string NotFound(const char* report) {
    TVL::Log(TVL::Log::kError).Write(report);
    return {};
}

}  // namespace

std::string ReadInstallValue(const char* name) {
    const RegistryKey key(HKEY_LOCAL_MACHINE, TVL::kInstallKey);
    return key.IsOpen() ? key.Read(name).value_or("") : "";
}

bool IsInstallValueTooLong(const char* name) {
    const RegistryKey key(HKEY_LOCAL_MACHINE, TVL::kInstallKey);
    return key.IsOpen() && key.IsTooLong(name);
}

std::string FindDocumentsPath() {
    const RegistryKey key(HKEY_CURRENT_USER, kDocumentsKey);
    if (!key.IsOpen()) return NotFound("Unable to find my documents path");
    const std::optional<std::string> documents = key.Read(kDocumentsValue);
    if (!documents) return NotFound("Unable to find my documents registry key");
    return *documents + kProductFolder;
}
