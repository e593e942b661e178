#include "platform/stand_in_registry.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

#include "platform/environment.h"
#include "platform/registry_text/reg_file.h"
#include "platform/win32.h"

namespace platform {
namespace {

constexpr char kStandIns[] = "Software\\Tarvo Works\\Stand-ins";

struct Root {
    HKEY key;
    std::string name;  // as in a .reg file, in lower case
};

const std::array<Root, 2>& Roots() {
    static const std::array<Root, 2> roots{
        {{HKEY_LOCAL_MACHINE, "hkey_local_machine"}, {HKEY_CURRENT_USER, "hkey_current_user"}}};
    return roots;
}

HKEY MakeKey(HKEY above, const std::string& path) {
    HKEY made = nullptr;
    RegCreateKeyExA(above, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                    &made, nullptr);
    return made;
}

// Both roots of this process, turned to keys below one that bears the process's number.
class StandIn {
  public:
    StandIn() = default;
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;
    ~StandIn() { TakeAway(); }

    void Place(const RegFile& file) {
        TakeAway();
        std::array<HKEY, 2> tops{};
        for (std::size_t at = 0; at < tops.size(); ++at) {
            tops[at] = MakeKey(HKEY_CURRENT_USER, Path() + '\\' + Roots()[at].name);
            Fill(tops[at], Roots()[at].name + '\\', file);
        }
        for (std::size_t at = 0; at < tops.size(); ++at) {
            RegOverridePredefKey(Roots()[at].key, tops[at]);
            RegCloseKey(tops[at]);
        }
        isPlaced_ = true;
    }

  private:
    static std::string Path() {
        return std::string(kStandIns) + '\\' + std::to_string(GetCurrentProcessId());
    }

    static void Fill(HKEY top, const std::string& root, const RegFile& file) {
        for (const auto& [path, values] : file.keys) {
            if (!path.starts_with(root)) continue;
            const HKEY key = MakeKey(top, path.substr(root.size()));
            for (const auto& [name, value] : values)
                RegSetValueExA(key, name.c_str(), 0, value.type,
                               reinterpret_cast<const BYTE*>(value.bytes.data()),
                               static_cast<DWORD>(value.bytes.size()));
            RegCloseKey(key);
        }
    }

    void TakeAway() {
        if (!isPlaced_) return;
        for (const Root& root : Roots())
            RegOverridePredefKey(root.key, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, Path().c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, Path().c_str());
        isPlaced_ = false;
    }

    bool isPlaced_ = false;
};

StandIn& TheStandIn() {
    static StandIn standIn;
    return standIn;
}

std::string ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// The text is taken as the code page's, as Windows takes it; but its own exports are UTF-16.
std::string InCodePage(const std::string& bytes) {
    constexpr std::string_view kMark = "\xFF\xFE";
    if (!bytes.starts_with(kMark)) return bytes;
    std::wstring wide(bytes.size() / sizeof(wchar_t) - 1, L'\0');
    std::memcpy(wide.data(), bytes.data() + kMark.size(), wide.size() * sizeof(wchar_t));
    const int size = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
    return text;
}

}  // namespace

void HideRegistry() {
    TheStandIn().Place({});
}

void UseRegistryFile(const std::string& path) {
    SetVariable(kRegistryVariable, path);
    const RegFile file = ParseRegFile(InCodePage(ReadFile(path)));
    ReportDamage(path, file);
    TheStandIn().Place(file);
}

void UseNamedRegistry() {
    const char* const path = std::getenv(kRegistryVariable);
    if (path) UseRegistryFile(path);
}

}  // namespace platform
