#include <gtest/gtest.h>

#include <array>
#include <string>

#include "platform/win32.h"
#include "resources/resource_ids.h"
#include "tvl/ids.h"

namespace {

std::string ReadResource(int id, const char* type) {
    const HRSRC resource = FindResourceA(nullptr, MAKEINTRESOURCEA(id), type);
    const void* const data = LockResource(LoadResource(nullptr, resource));
    if (data == nullptr) return {};
    return {static_cast<const char*>(data), SizeofResource(nullptr, resource)};
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
    for (const int option :
         {TVL::kDynamicMeshes, TVL::kOptimisedControllers, TVL::kConvertAllControllers}) {
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

}  // namespace
