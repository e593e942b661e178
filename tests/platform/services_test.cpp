#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/testing.h"
#include "platform/win32.h"
#include "tests/platform/message_recorder.h"

namespace {

namespace fs = std::filesystem;

TEST(CreatingADirectory, MakesOneLevelFromAPathWithBackslashes) {
    const fs::path base = fs::path(testing::TempDir()) / "directories";
    fs::remove_all(base);
    fs::create_directory(base);
    EXPECT_TRUE(CreateDirectoryA((base.string() + "\\\\data\\").c_str(), nullptr));
    EXPECT_TRUE(fs::is_directory(base / "data"));
    EXPECT_FALSE(CreateDirectoryA((base.string() + "\\data").c_str(), nullptr)) << "it is there";
    EXPECT_FALSE(CreateDirectoryA((base.string() + "\\a\\b").c_str(), nullptr)) << "two levels";
    EXPECT_FALSE(CreateDirectoryA("", nullptr));
    EXPECT_FALSE(CreateDirectoryA(nullptr, nullptr));
    EXPECT_FALSE(fs::exists(base / "a"));
}

TEST(TheCurrentDirectory, IsToldIfItFitsAndElseItsSize) {
    const std::string directory = fs::current_path().string();
    const auto needed = static_cast<DWORD>(directory.size() + 1);
    std::array<char, 1024> buffer{};
    EXPECT_EQ(GetCurrentDirectoryA(0, nullptr), needed);
    buffer.fill('#');
    EXPECT_EQ(GetCurrentDirectoryA(needed - 1, buffer.data()), needed);
    EXPECT_EQ(buffer[0], '#');
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

TEST(AMessageBox, GoesToTheHandlerOrToStandardError) {
    {
        const MessageRecorder recorder;
        EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_ICONERROR | MB_OK), IDOK);
        ASSERT_EQ(recorder.boxes.size(), 1U);
        EXPECT_EQ(recorder.boxes[0].caption, "caption");
        EXPECT_EQ(recorder.boxes[0].text, "text");
        EXPECT_EQ(recorder.boxes[0].style, 16U);
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, nullptr, MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\nError: \n");
}

TEST(AMessageBox, MayReplaceItsHandlerFromInside) {
    int calls = 0;
    platform::SetMessageBoxHandler([&](const auto&) {
        platform::SetMessageBoxHandler(nullptr);
        ++calls;
        throw 1;
    });
    EXPECT_EQ(MessageBoxA(nullptr, "", "", MB_OK), IDOK);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(platform::SetMessageBoxHandler(nullptr));
}

}  // namespace
