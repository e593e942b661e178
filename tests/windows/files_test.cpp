#include "platform/files.h"

#include <gtest/gtest.h>

#include "adaptor/install_paths.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "tests/support/folder/temporary_folder.h"
#include "tvl/installation.h"

// What the system does with files, their names and its registry as no other does. A letter that the
// code page lacks it turns to "?" or to one that looks like it, and then names another file, or
// none.
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kLetters[] = L"\u0101\u4E2D";

// The command, run in a folder.
int RunIn(const fs::path& folder, const std::wstring& words) {
    return platform::RunProgram({.program = fs::absolute(COMMAND),
                                 .arguments = words,
                                 .out = folder / "out",
                                 .error = folder / "error",
                                 .folder = folder});
}

TEST(LettersThatTheCodePageLacks, NameNoOtherFile) {
    EXPECT_EQ(platform::ToNarrow(L"C:\\takes\\walk.scene"), "C:\\takes\\walk.scene");
    if (!platform::ToNarrow(kLetters).empty()) GTEST_SKIP() << "the code page has every letter";
    EXPECT_EQ(platform::ToNarrow(L"C:\\\x0100.scene"), "");
    SetEnvironmentVariableW(L"LUMISET_LOST", kLetters);
    EXPECT_EQ(platform::Variable("LUMISET_LOST"), "??");

    const TemporaryFolder outer;
    PlaceRegistry(outer, {});
    EXPECT_EQ(RunIn(outer.Path(), std::wstring(L"draw --sphere 1 -o ") + kLetters + L".scene"), 2);
    EXPECT_EQ(ReadFile(outer.Path() / "error"),
              "lumiset-headless: ??.scene: the code page lacks a letter of this\r\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(outer.Path()), {}), 3);

    // Of the folder that one is in they do not matter.
    const fs::path inner = outer.Path() / kLetters;
    fs::create_directory(inner);
    ASSERT_EQ(RunIn(inner, L"draw --sphere 1 -o a.scene"), 0);
    EXPECT_EQ(RunIn(inner, L"open --no-plugin a.scene --save a.scene"), 0);
}

TEST(TwoNamesOfOneFile, AreKnownAsSuchBeforeItIsThere) {
    const TemporaryFolder folder;
    const std::string name = folder.File("take.scene");
    EXPECT_TRUE(platform::AreSameFile(name, folder.File("TAKE.scene. ")));
    EXPECT_TRUE(platform::AreSameFile(name, folder.File("other\\..\\take.scene")));
    EXPECT_FALSE(platform::AreSameFile(name, folder.File("take.scene2")));
}

// As that of everybody whose own name has one.
TEST(AFolderForTemporaryFilesWithALetterBeyondAscii, ServesTheCommandAndTheCore) {
    const TemporaryFolder folder;
    const fs::path before = fs::temp_directory_path();
    const fs::path temporary = folder.Path() / L"J\x00F6rg";
    if (platform::ToNarrow(temporary).empty()) GTEST_SKIP() << "the code page lacks it";
    fs::create_directory(temporary);
    PlaceRegistry(folder, {platform::BesideProgram("."), ""});
    ASSERT_EQ(RunIn(folder.Path(), L"draw --sphere 1 -o ball.scene"), 0);
    SetEnvironmentVariableW(L"TMP", temporary.c_str());
    EXPECT_EQ(RunIn(folder.Path(), L"sample ball.scene --times 0:0:1"), 0)
        << ReadFile(folder.File("error"));
    SetEnvironmentVariableW(L"TMP", before.c_str());
    EXPECT_TRUE(fs::is_empty(temporary));
}

// In the system's own registry, where all is left as it was.
TEST(AnInstaller, Of32BitsWritesWhereItIsLookedFor) {
    // Whatever took its place in an earlier test.
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    const char* const name = TVL::kInstallValue;
    const std::string before = ReadInstallValue(name);
    const char* const path = "SOFTWARE\\Tarvo Works\\Ostrel tools";
    HKEY key = nullptr;
    DWORD found = 0;
    RegCreateKeyExA(HKEY_LOCAL_MACHINE, path, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY,
                    nullptr, &key, &found);
    const auto set = [&](const std::string& text) {
        RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    };
    set("D:\\Somebody's tools");
    EXPECT_EQ(ReadInstallValue(name), "D:\\Somebody's tools");
    if (before.empty())
        RegDeleteValueA(key, name);
    else
        set(before);
    RegCloseKey(key);
    if (found == REG_CREATED_NEW_KEY) RegDeleteKeyExA(HKEY_LOCAL_MACHINE, path, KEY_WOW64_32KEY, 0);
}

}  // namespace
