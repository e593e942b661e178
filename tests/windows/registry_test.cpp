#include "platform/registry.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "adaptor/install_paths.h"
#include "platform/narrow_path.h"
#include "platform/win32.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/world.h"

// The system's own registry. What a test writes there is taken back.
namespace {

struct Place {
    HKEY root;
    const char* key;
    const char* value;
    REGSAM view;
};

// Where a 32-bit installer writes, by the name that it uses.
constexpr const char* kDataPath = "datapath";
const Place kInstallPath{HKEY_LOCAL_MACHINE, "SOFTWARE\\Tarvo Works\\Ostrel tools", kDataPath,
                         KEY_WOW64_32KEY};
const Place kDocuments{HKEY_CURRENT_USER,
                       "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders",
                       "Personal", 0};

// A text in the registry. Whatever was there before comes back.
class Placed {
  public:
    Placed(const Place& place, const std::string& text) : place_(place) {
        RegCreateKeyExA(place.root, place.key, 0, nullptr, 0, KEY_ALL_ACCESS | place.view, nullptr,
                        &key_, &found_);
        std::array<char, 2048> before{};
        DWORD size = before.size();
        if (RegQueryValueExA(key_, place.value, nullptr, nullptr,
                             reinterpret_cast<BYTE*>(before.data()), &size) == ERROR_SUCCESS)
            before_ = before.data();
        Set(text);
    }
    ~Placed() {
        if (before_)
            Set(*before_);
        else
            RegDeleteValueA(key_, place_.value);
        RegCloseKey(key_);
        if (found_ == REG_CREATED_NEW_KEY) RegDeleteKeyExA(place_.root, place_.key, place_.view, 0);
    }
    Placed(const Placed&) = delete;
    Placed& operator=(const Placed&) = delete;

    void Set(const std::string& text) const {
        RegSetValueExA(key_, place_.value, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    }

  private:
    Place place_;
    HKEY key_ = nullptr;
    DWORD found_ = 0;
    std::optional<std::string> before_;
};

TEST(TheRegistry, HoldsWhatA32BitInstallerAndTheUserWrote) {
    // Whatever took its place in an earlier test.
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        RegOverridePredefKey(root, nullptr);
    const Placed installed(kInstallPath, std::string(1023, 'x'));
    EXPECT_EQ(ReadInstallValue(kDataPath), std::string(1023, 'x'));
    installed.Set(std::string(1024, 'x'));
    EXPECT_EQ(ReadInstallValue(kDataPath), "") << "the whole path or none";
    EXPECT_EQ(ReadInstallValue("no such value"), "");
    const Placed documents(kDocuments, "D:\\Somebody's letters");
    EXPECT_EQ(FindDocumentsPath(), "D:\\Somebody's letters\\Tarvo Works\\Lumiset\\");
}

// Such a file is what the system's own editor exports.
TEST(ASubstituteRegistry, TakesAFileOfUtf16) {
    const TemporaryFolder folder;
    const std::wstring text =
        L"\xFEFFWindows Registry Editor Version 5.00\r\n"
        L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools]\r\n"
        L"\"datapath\"=\"D:\\\\J\x00F6rg\"\r\n";
    const auto* const bytes = reinterpret_cast<const char*>(text.data());
    platform::UseRegistryFile(folder.Write("utf16.reg", {bytes, text.size() * sizeof text[0]}));
    EXPECT_EQ(ReadInstallValue(kDataPath), platform::ToNarrow(L"D:\\J\x00F6rg"));
    platform::HideRegistry();
}

}  // namespace
