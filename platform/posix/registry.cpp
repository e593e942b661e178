#include "platform/registry.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/common/reg_file.h"
#include "platform/common/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/handle_table.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "platform/win32.h"

namespace platform {
namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;  // bytes; the rest is not read

// A key keeps the registry as it was when a key was opened from its root.
struct OpenKey {
    std::shared_ptr<const RegFile> file;
    std::string path;  // in lower case, its root first
};

struct Registry {
    HandleTable<HKEY, OpenKey> keys;
    // What was read last.
    std::string path;
    std::optional<std::string> bytes;
    std::shared_ptr<const RegFile> file;
    bool isHidden = false;
    std::optional<RegistryText> laidOver;  // key and name in lower case
};

// Never destroyed: a key can be opened while the program ends.
Registry& TheRegistry() {
    static auto* const registry = new Registry;
    return *registry;
}

std::string RegistryPath() {
    if (const char* const named = std::getenv(kRegistryVariable)) return named;
    const std::filesystem::path program = ProgramFile();
    return program.empty() ? "" : (program.parent_path() / "lumiset.reg").string();
}

bool IsNamed() {
    return std::getenv(kRegistryVariable) != nullptr;
}

// Nothing if there is no such file, as a computer without an installation has none.
std::optional<std::string> ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::array<char, 65536> block;
    std::string bytes;
    do {
        stream.read(block.data(), block.size());
        bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    } while (stream && bytes.size() < kLargestFile);
    if (!stream.is_open() || stream.bad()) return std::nullopt;
    return bytes;
}

std::shared_ptr<const RegFile> ReadWhatIsBelow() {
    Registry& registry = TheRegistry();
    if (registry.isHidden) return std::make_shared<const RegFile>();
    std::string path = RegistryPath();
    std::optional<std::string> bytes = ReadFile(path);
    if (registry.file && registry.path == path && registry.bytes == bytes) return registry.file;
    auto file = std::make_shared<const RegFile>(ParseRegFile(bytes.value_or("")));
    if (!bytes && IsNamed() && !path.empty()) ReportUnreadable(path);
    ReportDamage(path, *file);
    registry.path = std::move(path);
    registry.bytes = std::move(bytes);
    registry.file = file;
    return file;
}

std::shared_ptr<const RegFile> ReadRegistry() {
    std::shared_ptr<const RegFile> below = ReadWhatIsBelow();
    const std::optional<RegistryText>& over = TheRegistry().laidOver;
    if (!over) return below;
    RegFile file = *below;
    file.keys[over->key][over->name] = {REG_SZ, over->text + '\0'};
    return std::make_shared<const RegFile>(std::move(file));
}

std::string RootPath(HKEY key) {
    if (key == HKEY_LOCAL_MACHINE) return "hkey_local_machine";
    if (key == HKEY_CURRENT_USER) return "hkey_current_user";
    return {};
}

// The key that `key` stands for; one without a path if it stands for none.
OpenKey KeyBehind(HKEY key) {
    std::string root = RootPath(key);
    if (!root.empty()) return {ReadRegistry(), std::move(root)};
    const OpenKey* const open = TheRegistry().keys.Find(key);
    return open == nullptr ? OpenKey{} : *open;
}

LSTATUS Open(HKEY key, std::string_view subKey, HKEY& result) {
    OpenKey opened = KeyBehind(key);
    if (opened.path.empty()) return ERROR_INVALID_HANDLE;
    while (subKey.ends_with('\\'))
        subKey.remove_suffix(1);
    if (!subKey.empty()) opened.path += '\\' + LowerCase(subKey);
    const bool isRoot = opened.path.find('\\') == std::string::npos;
    if (!isRoot && !opened.file->HasKey(opened.path)) return ERROR_FILE_NOT_FOUND;
    result = TheRegistry().keys.Add(std::move(opened));
    return ERROR_SUCCESS;
}

LSTATUS Query(HKEY key, std::string_view name, DWORD* type, BYTE* data, DWORD* size) {
    const OpenKey opened = KeyBehind(key);
    if (opened.path.empty()) return ERROR_INVALID_HANDLE;
    const RegValue* const value = opened.file->FindValue(opened.path, LowerCase(name));
    if (value == nullptr) return ERROR_FILE_NOT_FOUND;
    if (type != nullptr) *type = value->type;
    if (size == nullptr) return ERROR_SUCCESS;
    const auto needed = static_cast<DWORD>(value->bytes.size());
    const DWORD room = std::exchange(*size, needed);
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < needed) return ERROR_MORE_DATA;
    std::copy(value->bytes.begin(), value->bytes.end(), data);
    return ERROR_SUCCESS;
}

}  // namespace

void HideRegistry() {
    TheRegistry().isHidden = true;
}

void UseRegistryFile(const std::string& path) {
    SetVariable(kRegistryVariable, path);
}

void LayOverRegistry(const std::optional<RegistryText>& text) {
    TheRegistry().laidOver = text;
    if (!text) return;
    TheRegistry().laidOver->key = LowerCase(text->key);
    TheRegistry().laidOver->name = LowerCase(text->name);
}

// It is what is looked for whenever a key is opened.
void UseNamedRegistry() {}

std::size_t CountOpenKeys() {
    return TheRegistry().keys.Count();
}

}  // namespace platform

extern "C" {

LSTATUS RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD, REGSAM, HKEY* result) {
    if (result == nullptr) return ERROR_INVALID_PARAMETER;
    *result = nullptr;
    return platform::Guarded<LSTATUS>(ERROR_NOT_ENOUGH_MEMORY, [&] {
        return platform::Open(key, subKey == nullptr ? "" : subKey, *result);
    });
}

LSTATUS RegQueryValueExA(HKEY key, LPCSTR name, DWORD*, DWORD* type, BYTE* data, DWORD* size) {
    if (data != nullptr && size == nullptr) return ERROR_INVALID_PARAMETER;
    return platform::Guarded<LSTATUS>(ERROR_NOT_ENOUGH_MEMORY, [&] {
        return platform::Query(key, name == nullptr ? "" : name, type, data, size);
    });
}

LSTATUS RegCloseKey(HKEY key) {
    return platform::Guarded<LSTATUS>(ERROR_INVALID_HANDLE, [&] {
        if (!platform::RootPath(key).empty()) return ERROR_SUCCESS;
        return platform::TheRegistry().keys.Remove(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
    });
}

}  // extern "C"
