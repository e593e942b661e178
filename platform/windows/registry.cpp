#include "platform/registry.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "platform/common/reg_file.h"
#include "platform/common/text.h"
#include "platform/process.h"
#include "platform/win32.h"

namespace platform {
namespace {

constexpr char kSubstitutes[] = "Software\\Tarvo Works\\Substitutes";

struct Root {
    HKEY key;
    std::string name;  // as in a .reg file, in lower case
};

const std::array<Root, 2>& Roots() {
    static const std::array<Root, 2> roots{
        {{HKEY_LOCAL_MACHINE, "hkey_local_machine"}, {HKEY_CURRENT_USER, "hkey_current_user"}}};
    return roots;
}

// A .reg file's texts are UTF-8, whatever the code page is.
std::wstring Wide(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
    return wide;
}

HKEY MakeKey(HKEY above, const std::string& path) {
    HKEY made = nullptr;
    RegCreateKeyExW(above, Wide(path).c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                    nullptr, &made, nullptr);
    return made;
}

// Where this process has keys of its own, below the user's.
std::string OwnPath() {
    return std::string(kSubstitutes) + '\\' + std::to_string(GetCurrentProcessId());
}

void SetValue(HKEY key, const std::wstring& name, const RegValue& value) {
    const bool isText =
        value.type == REG_SZ || value.type == REG_EXPAND_SZ || value.type == REG_MULTI_SZ;
    const std::wstring text = isText ? Wide(value.bytes) : std::wstring();
    const void* const bytes = isText ? static_cast<const void*>(text.data()) : value.bytes.data();
    const std::size_t size = isText ? text.size() * sizeof(wchar_t) : value.bytes.size();
    RegSetValueExW(key, name.c_str(), 0, value.type, static_cast<const BYTE*>(bytes),
                   static_cast<DWORD>(size));
}

// Both roots of this process, turned to keys below one that bears the process's number.
class SubstituteRegistry {
  public:
    SubstituteRegistry() = default;
    SubstituteRegistry(const SubstituteRegistry&) = delete;
    SubstituteRegistry& operator=(const SubstituteRegistry&) = delete;
    ~SubstituteRegistry() { TakeAway(); }

    void Place(const RegFile& file) {
        TakeAway();
        std::array<HKEY, 2> tops{};
        for (std::size_t at = 0; at < tops.size(); ++at) {
            tops[at] = MakeKey(HKEY_CURRENT_USER, OwnPath() + '\\' + Roots()[at].name);
            Fill(tops[at], Roots()[at].name + '\\', file);
        }
        for (std::size_t at = 0; at < tops.size(); ++at) {
            RegOverridePredefKey(Roots()[at].key, tops[at]);
            RegCloseKey(tops[at]);
        }
        isPlaced_ = true;
    }

  private:
    static void Fill(HKEY top, const std::string& root, const RegFile& file) {
        for (const auto& [path, values] : file.keys) {
            if (!path.starts_with(root)) continue;
            const HKEY key = MakeKey(top, path.substr(root.size()));
            for (const auto& [name, value] : values)
                SetValue(key, Wide(name), value);
            RegCloseKey(key);
        }
    }

    void TakeAway() {
        if (!isPlaced_) return;
        for (const Root& root : Roots())
            RegOverridePredefKey(root.key, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, OwnPath().c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, OwnPath().c_str());
        isPlaced_ = false;
    }

    bool isPlaced_ = false;
};

SubstituteRegistry& TheSubstitute() {
    static SubstituteRegistry substitute;
    return substitute;
}

// The user's real root, whatever its name leads to.
HKEY OpenRealUser() {
    HKEY user = nullptr;
    RegOpenCurrentUser(KEY_ALL_ACCESS, &user);
    return user;
}

// What a substitute has put in the place of a root, in whichever module that was; else null.
HKEY OpenSubstitute(const Root& root) {
    const HKEY user = OpenRealUser();
    HKEY found = nullptr;
    RegOpenKeyExA(user, (OwnPath() + '\\' + root.name).c_str(), 0, KEY_ALL_ACCESS, &found);
    RegCloseKey(user);
    return found;
}

// Turns one root to a key in which there is nothing but the text, and the values beside it.
class OverlaidText {
  public:
    OverlaidText() = default;
    OverlaidText(const OverlaidText&) = delete;
    OverlaidText& operator=(const OverlaidText&) = delete;
    ~OverlaidText() { TakeAway(); }

    void Lay(const RegistryText& laid) {
        TakeAway();
        const std::size_t end = laid.key.find('\\');
        for (const Root& root : Roots())
            if (root.name == LowerCase(laid.key.substr(0, end))) root_ = &root;
        if (!root_ || end == std::string::npos) return;
        const HKEY user = OpenRealUser();
        const HKEY top = MakeKey(user, OwnPath() + '\\' + kTop);
        Fill(top, laid.key.substr(end + 1), laid);
        RegOverridePredefKey(root_->key, top);
        RegCloseKey(top);
        RegCloseKey(user);
    }

    void TakeAway() {
        if (!root_) return;
        const HKEY below = OpenSubstitute(*root_);
        RegOverridePredefKey(root_->key, below);
        RegCloseKey(below);
        const HKEY user = OpenRealUser();
        RegDeleteTreeA(user, (OwnPath() + '\\' + kTop).c_str());
        RegDeleteKeyA(user, OwnPath().c_str());  // unless a substitute stands there
        RegCloseKey(user);
        root_ = nullptr;
    }

  private:
    static constexpr char kTop[] = "laid over";

    void Fill(HKEY top, const std::string& path, const RegistryText& laid) const {
        const HKEY key = MakeKey(top, path);
        HKEY below = nullptr;
        if (RegOpenKeyExA(root_->key, path.c_str(), 0, KEY_READ, &below) == ERROR_SUCCESS) {
            RegCopyTreeA(below, nullptr, key);
            RegCloseKey(below);
        }
        RegSetValueExA(key, laid.name.c_str(), 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(laid.text.c_str()),
                       static_cast<DWORD>(laid.text.size() + 1));
        RegCloseKey(key);
    }

    const Root* root_ = nullptr;  // that is turned
};

OverlaidText& TheOverlaidText() {
    static OverlaidText text;
    return text;
}

std::optional<std::string> ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace

void HideRegistry() {
    TheSubstitute().Place({});
}

void UseRegistryFile(const std::string& path) {
    SetVariable(kRegistryVariable, path);
    const std::optional<std::string> bytes = ReadFile(path);
    if (!bytes) ReportUnreadable(path);
    const RegFile file = ParseRegFile(bytes.value_or(""));
    ReportDamage(path, file);
    TheSubstitute().Place(file);
}

void LayOverRegistry(const std::optional<RegistryText>& text) {
    TheOverlaidText().TakeAway();
    if (text) TheOverlaidText().Lay(*text);
}

void UseNamedRegistry() {
    const std::string path = Variable(kRegistryVariable);
    if (!path.empty()) UseRegistryFile(path);
}

}  // namespace platform
