#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "platform/message_box.h"
#include "platform/win32.h"
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
    EXPECT_FALSE(CreateDirectoryA("", nullptr) || CreateDirectoryA(nullptr, nullptr));
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

TEST(AMessageBox, GoesToTheHandlerWhichMayGoAndThrowOrToStandardError) {
    std::string told;
    platform::SetMessageBoxHandler([&](const platform::MessageBoxRequest& box) {
        platform::SetMessageBoxHandler(nullptr);
        told = box.caption + ": " + box.text + ' ' + std::to_string(box.style);
        throw 1;
    });
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_ICONERROR | MB_OK), IDOK);
    EXPECT_EQ(told, "caption: text 16");
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    EXPECT_EQ(MessageBoxA(nullptr, nullptr, nullptr, MB_OK), IDOK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\nError: \n");
}

TEST(AResource, IsFoundByNumberAndTypeAndReadThroughItsOwnHandleAlone) {
    const auto number = MAKEINTRESOURCEA(22);
    const HRSRC note = FindResourceA(nullptr, number, "nOTE");
    EXPECT_NE(LockResource(LoadResource(nullptr, note)), nullptr) << "though it is empty";
    EXPECT_EQ(FindResourceA(nullptr, "#22", "Note"), note);
    for (const LPCSTR type : {LPCSTR{"Not"}, LPCSTR{MAKEINTRESOURCEA(5)}, LPCSTR{}})
        EXPECT_EQ(FindResourceA(nullptr, number, type), nullptr);
    for (const LPCSTR name : {LPCSTR{"#22x"}, LPCSTR{MAKEINTRESOURCEA(23)}, LPCSTR{}})
        EXPECT_EQ(FindResourceA(nullptr, name, "Note"), nullptr);
    int local = 0;
    for (const HRSRC bad : {HRSRC{}, static_cast<HRSRC>(static_cast<void*>(&local))}) {
        EXPECT_EQ(SizeofResource(nullptr, bad), 0U);
        EXPECT_EQ(LoadResource(nullptr, bad), nullptr);
    }
    EXPECT_EQ(LockResource(nullptr), nullptr);
}

}  // namespace
