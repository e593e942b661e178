#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/testing.h"
#include "platform/win32.h"
#include "resources/resource_ids.h"
#include "tests/platform/message_recorder.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(ADirectory, IsMadeOneLevelDeepFromAPathWithBackslashes) {
    const TemporaryFolder folder;
    const std::string base = folder.Path().string();
    EXPECT_TRUE(CreateDirectoryA((base + "\\\\data\\").c_str(), nullptr));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "data"));
    EXPECT_FALSE(CreateDirectoryA((base + "\\data").c_str(), nullptr)) << "it is there";
    EXPECT_FALSE(CreateDirectoryA((base + "\\a\\b").c_str(), nullptr)) << "two levels";
    EXPECT_FALSE(CreateDirectoryA("", nullptr));
    EXPECT_FALSE(CreateDirectoryA(nullptr, nullptr));
    EXPECT_FALSE(fs::exists(folder.Path() / "a"));
}

TEST(TheCurrentDirectory, IsToldIfItFitsAndElseItsSize) {
    const std::string directory = fs::current_path().string();
    const auto needed = static_cast<DWORD>(directory.size() + 1);
    std::array<char, 1024> buffer{};
    EXPECT_EQ(GetCurrentDirectoryA(0, nullptr), needed);
    EXPECT_EQ(GetCurrentDirectoryA(needed - 1, buffer.data()), needed);
    EXPECT_EQ(buffer[0], '\0');
    buffer.fill('#');
    EXPECT_EQ(GetCurrentDirectoryA(needed, buffer.data()), needed - 1);
    EXPECT_EQ(buffer.data(), directory);
    EXPECT_EQ(buffer[needed], '#');
}

TEST(TheTickCount, StandsWhereATestSetsItAndElseGoesForward) {
    platform::SetTickCount(0xFFFFFFFF);
    EXPECT_EQ(GetTickCount(), 0xFFFFFFFF);
    platform::ClearTickCount();
    const DWORD before = GetTickCount();
    EXPECT_LE(GetTickCount() - before, 60000U);
}

TEST(AMessageBox, GoesToTheHandlerWhichMayGoAndThrowOrToStandardError) {
    {
        const MessageRecorder recorder;
        EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_ICONERROR | MB_OK), IDOK);
        ASSERT_EQ(recorder.boxes.size(), 1U);
        EXPECT_EQ(recorder.boxes[0].caption, "caption");
        EXPECT_EQ(recorder.boxes[0].text, "text");
        EXPECT_EQ(recorder.boxes[0].style, 16U);
    }
    int calls = 0;
    platform::SetMessageBoxHandler([&](const auto&) {
        platform::SetMessageBoxHandler(nullptr);
        ++calls;
        throw 1;
    });
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "", "", MB_OK), IDOK);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, nullptr, MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\nError: \n");
}

TEST(AResource, IsFoundByNumberAndTypeAndReadThroughItsOwnHandleAlone) {
    const auto number = MAKEINTRESOURCEA(OptionPanel);
    const HRSRC panel = FindResourceA(nullptr, number, "xmlFILE");
    EXPECT_GT(SizeofResource(nullptr, panel), 0U);
    EXPECT_EQ(FindResourceA(nullptr, "#152", "XMLFile"), panel);
    for (const char* const type : {"XMLFil", static_cast<const char*>(MAKEINTRESOURCEA(5)),
                                   static_cast<const char*>(nullptr)})
        EXPECT_EQ(FindResourceA(nullptr, number, type), nullptr);
    for (const char* const name : {"#152x", static_cast<const char*>(MAKEINTRESOURCEA(153)),
                                   static_cast<const char*>(nullptr)})
        EXPECT_EQ(FindResourceA(nullptr, name, "XMLFile"), nullptr);
    const HRSRC empty = FindResourceA(nullptr, MAKEINTRESOURCEA(22), "NOTE");
    EXPECT_NE(LockResource(LoadResource(nullptr, empty)), nullptr);
    EXPECT_EQ(SizeofResource(nullptr, empty), 0U);
    int local = 0;
    for (const HRSRC bad : {HRSRC{}, static_cast<HRSRC>(static_cast<void*>(&local))}) {
        EXPECT_EQ(SizeofResource(nullptr, bad), 0U);
        EXPECT_EQ(LoadResource(nullptr, bad), nullptr);
    }
    EXPECT_EQ(LockResource(nullptr), nullptr);
}

}  // namespace
