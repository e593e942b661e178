#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/win32.h"
#include "resources/resource_ids.h"

namespace {

std::string ReadResource(int id, const char* type) {
    const HRSRC resource = FindResourceA(nullptr, MAKEINTRESOURCEA(id), type);
    const void* const data = LockResource(LoadResource(nullptr, resource));
    if (data == nullptr) return {};
    return {static_cast<const char*>(data), SizeofResource(nullptr, resource)};
}

std::string ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string AreaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return std::to_string(area.left) + " " + std::to_string(area.top) + " " +
           std::to_string(area.right - area.left) + " " + std::to_string(area.bottom - area.top);
}

TEST(TheResourcesOfTheLibrary, HoldItsTwoDialogs) {
    const struct {
        int dialog;
        const char* area;
        bool isVisible;
        int button;
        const char* buttonArea;
        const char* text;
    } expected[] = {
        {PanelDialog, "0 0 108 30", false, StartButton, "7 7 94 16", "Start Lumiset"},
        {ConvertDialog, "0 0 108 41", true, ConvertButton, "14 7 82 14",
         "Convert to PRS controller"},
    };
    const HWND frame = CreateWindowExA(0, "STATIC", "", WS_VISIBLE, 0, 0, 9, 9, nullptr, nullptr,
                                       nullptr, nullptr);
    for (const auto& page : expected) {
        const HWND dialog =
            CreateDialogParamA(nullptr, MAKEINTRESOURCEA(page.dialog), frame, nullptr, 0);
        const HWND button = GetDlgItem(dialog, page.button);
        std::array<char, 64> text{};
        GetWindowTextA(button, text.data(), 64);
        EXPECT_EQ(AreaOf(dialog), page.area);
        EXPECT_EQ(IsWindowVisible(dialog) != 0, page.isVisible);
        EXPECT_EQ(AreaOf(button), page.buttonArea);
        EXPECT_STREQ(text.data(), page.text);
        EXPECT_EQ(GetDlgItem(dialog, AttachControl), nullptr);
    }
    DestroyWindow(frame);
}

TEST(TheResourcesOfTheLibrary, HoldTheOptionPanelWithoutAnythingBeforeItsRoot) {
    const std::string panel = ReadResource(OptionPanel, "XMLFile");
    EXPECT_TRUE(panel.starts_with("<group>"));
    std::size_t at = 0;
    for (const int option : {DynamicMeshesOption, OptimizedTransformOption, ConvertAllOption}) {
        at = panel.find("<id>" + std::to_string(option) + "</id>", at);
        EXPECT_NE(at, std::string::npos) << option;
    }
}

TEST(AResource, IsFoundByNumberAndNamedTypeOnly) {
    const auto number = MAKEINTRESOURCEA(OptionPanel);
    EXPECT_NE(FindResourceA(nullptr, number, "xmlFILE"), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, "#152", "XMLFile"), FindResourceA(nullptr, number, "XMLFile"));
    EXPECT_EQ(FindResourceA(nullptr, number, "XMLFil"), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, number, MAKEINTRESOURCEA(5)), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, number, nullptr), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, "#152x", "XMLFile"), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, nullptr, "XMLFile"), nullptr);
    EXPECT_EQ(FindResourceA(nullptr, MAKEINTRESOURCEA(153), "XMLFile"), nullptr);
    EXPECT_NE(FindResourceA(nullptr, MAKEINTRESOURCEA(22), "NOTE"), nullptr);
    EXPECT_EQ(ReadResource(22, "NOTE"), "");
}

TEST(AResource, IsNotReadThroughAHandleOfNone) {
    int local = 0;
    const auto made = static_cast<HRSRC>(static_cast<void*>(&local));
    for (const HRSRC bad : {HRSRC{}, made}) {
        EXPECT_EQ(SizeofResource(nullptr, bad), 0U);
        EXPECT_EQ(LoadResource(nullptr, bad), nullptr);
    }
    EXPECT_EQ(LockResource(nullptr), nullptr);
}

class ResourceCompiler : public testing::Test {
  protected:
    // Compiles the text as a script. Returns the exit status; `told` is what it printed.
    int Compile(const std::string& script) {
        std::ofstream(path_, std::ios::binary) << script;
        const std::string command = std::string(RESOURCE_COMPILER) + " " + path_ + " " + path_ +
                                    ".cpp " + path_ + ".d 2>" + path_ + ".txt";
        const int status = std::system(command.c_str());
        told = ReadFile(path_ + ".txt");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string told;
    const std::string path_ = testing::TempDir() + "script.rc";
};

TEST_F(ResourceCompiler, NamesTheFileAndTheLineOfAFault) {
    const std::string dialog = "1 DIALOG 0, 0, 9, 9\nBEGIN\n";
    const struct {
        std::string script;
        int line;
    } faults[] = {
        {"\n7 Note \"nowhere.txt\"\n", 2},
        {"\n\n#include \"nowhere.h\"\n", 3},
        {"#include \"script.rc\"\n", 1},
        {"#include nothing\n", 1},
        {"#endif\n", 1},
        {"#ifdef X\n", 1},
        {"#wrong\n", 1},
        {"#define A 1x\n", 1},
        {"#define A 99999999999999999999\n", 1},
        {"/* no end\n\n", 2},
        {"\n1 Note \"no end\n", 2},
        {"1 Note ;\n", 1},
        {"1\n", 1},
        {"Note 1\n", 1},
        {"1 DIALOG 0 0\n", 1},
        {"1 DIALOG 0, 0, 9, 9\nMENU 3\nBEGIN\nEND\n", 2},
        {"1 DIALOG 0, 0, 9, 9\nSTYLE WS_NONE\nBEGIN\nEND\n", 2},
        {dialog, 2},
        {dialog + "COMBOBOX 1, 1, 1, 1, 1\nEND\n", 3},
        {dialog + "LTEXT \"a\", UNKNOWN, 1, 1, 1, 1\nEND\n", 3},
        {dialog + "LTEXT \"a\", 1, 1, 1, 1\nEND\n", 4},
    };
    for (const auto& fault : faults) {
        EXPECT_EQ(Compile(fault.script), 1) << fault.script;
        const std::string place = path_ + ":" + std::to_string(fault.line) + ": ";
        EXPECT_EQ(told.substr(0, place.size()), place) << fault.script;
    }
}

TEST_F(ResourceCompiler, TellsTheBuildWhatASourceIsMadeFrom) {
    std::ofstream(testing::TempDir() + "ids.h") << "#pragma once\n#define ID 4\n";
    std::ofstream(testing::TempDir() + "note.txt") << "text";
    ASSERT_EQ(Compile("#include \"ids.h\"\nID Note \"note.txt\"\n"), 0) << told;
    const std::string dependencies = ReadFile(path_ + ".d");
    for (const std::string name : {"script.rc", "ids.h", "note.txt"}) {
        EXPECT_NE(dependencies.find(testing::TempDir() + name), std::string::npos) << name;
    }
}

}  // namespace
