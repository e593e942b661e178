#include "platform/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "headless/session.h"
#include "platform/narrow_path.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "platform/win32.h"
#include "tests/support/folder/surroundings.h"
#include "tests/support/folder/temporary_folder.h"

// What the system does with files and their names as no other does.
namespace {

// Neither a question mark nor the nearest letter: either could name another file.
TEST(ANameWithALetterThatTheCodePageLacks, IsNotTold) {
    EXPECT_EQ(platform::ToNarrow(L"C:\\takes\\walk.scene"), "C:\\takes\\walk.scene");
    if (GetACP() == CP_UTF8) GTEST_SKIP() << "it lacks none";
    EXPECT_EQ(platform::ToNarrow(L"C:\\\x0100\x4E2D.scene"), "");
    EXPECT_EQ(platform::ToNarrow(L"C:\\\x0100.scene"), "");
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
    const std::filesystem::path before = std::filesystem::temp_directory_path();
    const std::filesystem::path temporary = folder.Path() / L"J\x00F6rg";
    if (platform::ToNarrow(temporary).empty()) GTEST_SKIP() << "the code page lacks it";
    std::filesystem::create_directory(temporary);
    PlaceRegistry(folder, {platform::BesideProgram("."), ""});
    const std::string scene = folder.File("empty.scene");
    headless::Session session;
    session.Start();
    ASSERT_EQ(session.SaveScene(scene).error, "");
    SetEnvironmentVariableW(L"TMP", temporary.c_str());
    EXPECT_EQ(platform::RunProgram({.program = COMMAND,
                                    .arguments = L"sample \"" + folder.Path().native() +
                                                 L"\\empty.scene\" --times 0:0:1",
                                    .out = folder.Path() / "out",
                                    .error = folder.Path() / "error"}),
              0)
        << ReadFile(folder.File("error"));
    SetEnvironmentVariableW(L"TMP", before.c_str());
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
}

}  // namespace
