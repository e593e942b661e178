#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "tests/support/folder/surroundings.h"

// Names with letters that the code page lacks. The system turns such a letter to "?" or to one that
// looks like it, and then names another file, or none.
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kLetters[] = L"\u0101\u4E2D";

class LostLetters : public testing::Test {
  protected:
    void SetUp() override {
        if (!platform::ToNarrow(kLetters).empty()) GTEST_SKIP() << "the code page has every letter";
        PlaceRegistry(folder_, {});
    }

    // In the folder.
    static int RunIn(const fs::path& folder, const std::wstring& words) {
        return platform::RunProgram({.program = fs::absolute(COMMAND),
                                     .arguments = words,
                                     .out = folder / "out",
                                     .error = folder / "error",
                                     .folder = folder});
    }
    int Run(const std::wstring& words) const { return RunIn(folder_.Path(), words); }
    std::string Error() const { return ReadFile(folder_.Path() / "error"); }

    TemporaryFolder folder_;
};

TEST_F(LostLetters, OfTheCommandLineAreRefused) {
    const std::wstring target = std::wstring(kLetters) + L".scene";
    EXPECT_EQ(Run(L"draw --sphere 1 -o " + target), 2);
    EXPECT_EQ(Error(), "lumiset-headless: ??.scene: the code page lacks a letter of this\r\n");
    EXPECT_FALSE(fs::exists(folder_.Path() / target));
    EXPECT_FALSE(fs::exists(folder_.Path() / "a?.scene"));
}

TEST_F(LostLetters, OfTheFolderThatOneIsInDoNotMatter) {
    const fs::path folder = folder_.Path() / kLetters;
    fs::create_directory(folder);
    ASSERT_EQ(RunIn(folder, L"draw --sphere 1 -o a.scene"), 0);
    EXPECT_EQ(RunIn(folder, L"open --no-plugin a.scene --save a.scene"), 0)
        << ReadFile(folder / "error");
}

TEST_F(LostLetters, OfAVariableNameNoOtherFile) {
    SetEnvironmentVariableW(L"LUMISET_LOST", kLetters);
    EXPECT_EQ(platform::Variable("LUMISET_LOST"), "??");
    SetEnvironmentVariableW(L"LUMISET_LOST", nullptr);
    EXPECT_EQ(platform::Variable("LUMISET_LOST"), "");
}

}  // namespace
