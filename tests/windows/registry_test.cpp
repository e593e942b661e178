#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "adaptor/install_paths.h"
#include "platform/win32.h"
#include "support/world.h"

// The system's own registry. What a test writes there is taken back.
namespace {

constexpr const char* kInstallKey32 = "SOFTWARE\\Tarvo Works\\Ostrel tools";
constexpr const char* kDataPath = "datapath";

static_assert(KEY_READ == 131097);

// A value in the view that 32-bit programs have of the local machine.
class Value32 {
  public:
    explicit Value32(const char* value) {
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, kInstallKey32, 0, nullptr, 0,
                        KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &key_, &was_);
        std::array<char, 2048> text{};
        DWORD size = text.size();
        if (RegQueryValueExA(key_, kDataPath, nullptr, nullptr,
                             reinterpret_cast<BYTE*>(text.data()), &size) == ERROR_SUCCESS)
            before_ = text.data();
        Set(value);
    }
    ~Value32() {
        if (before_)
            Set(before_->c_str());
        else
            RegDeleteValueA(key_, kDataPath);
        RegCloseKey(key_);
        if (was_ == REG_CREATED_NEW_KEY)
            RegDeleteKeyExA(HKEY_LOCAL_MACHINE, kInstallKey32, KEY_WOW64_32KEY, 0);
    }
    Value32(const Value32&) = delete;
    Value32& operator=(const Value32&) = delete;

    void Set(const char* value) const {
        RegSetValueExA(key_, kDataPath, 0, REG_SZ, reinterpret_cast<const BYTE*>(value),
                       static_cast<DWORD>(std::string(value).size() + 1));
    }

  private:
    HKEY key_ = nullptr;
    DWORD was_ = 0;
    std::optional<std::string> before_;
};

TEST(TheInstallKey, IsTheOneThatA32BitInstallerWrites) {
    const Value32 installed("C:\\Program Files (x86)\\Tarvo");
    EXPECT_EQ(ReadInstallValue(kDataPath), "C:\\Program Files (x86)\\Tarvo");
    EXPECT_EQ(ReadInstallValue("no such value"), "");
}

TEST(TheInstallKey, GivesTheWholePathOrNone) {
    const Value32 installed(std::string(1023, 'x').c_str());
    EXPECT_EQ(ReadInstallValue(kDataPath), std::string(1023, 'x'));
    installed.Set(std::string(1024, 'x').c_str());
    EXPECT_EQ(ReadInstallValue(kDataPath), "");
}

TEST(TheDocumentsFolder, IsTheUsersOwn) {
    std::array<char, 1024> personal{};
    DWORD size = personal.size();
    constexpr const char* kShellFolders =
        "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    ASSERT_EQ(RegGetValueA(HKEY_CURRENT_USER, kShellFolders, "Personal", RRF_RT_REG_SZ, nullptr,
                           personal.data(), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(FindDocumentsPath(), std::string(personal.data()) + "\\Tarvo Works\\Lumiset\\");
}

}  // namespace
