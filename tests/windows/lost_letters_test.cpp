#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/environment.h"
#include "platform/narrow_path.h"
#include "support/folder/surroundings.h"

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

    // In the test's folder.
    int Run(const std::wstring& words) const {
        const std::wstring line = L"cd /d \"" + folder_.Path().wstring() + L"\" && \"" +
                                  fs::path(COMMAND).make_preferred().wstring() + L"\" " + words +
                                  L" >out 2>error";
        return _wsystem(line.c_str());
    }
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
    const std::wstring there = L"--no-plugin a.scene --save a.scene";
    const fs::path before = fs::current_path();
    ASSERT_EQ(Run(L"draw --sphere 1 -o a.scene"), 0) << Error();
    fs::rename(folder_.Path() / "a.scene", folder / "a.scene");
    fs::current_path(folder);
    const std::wstring line =
        L"\"" + fs::path(COMMAND).make_preferred().wstring() + L"\" open " + there + L" >out";
    EXPECT_EQ(_wsystem(line.c_str()), 0);
    fs::current_path(before);
}

TEST_F(LostLetters, OfAVariableNameNoOtherFile) {
    SetEnvironmentVariableW(L"LUMISET_LOST", kLetters);
    EXPECT_EQ(platform::Variable("LUMISET_LOST"), "??");
    SetEnvironmentVariableW(L"LUMISET_LOST", nullptr);
    EXPECT_EQ(platform::Variable("LUMISET_LOST"), "");
}

}  // namespace
