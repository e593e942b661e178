#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/common/resources.h"
#include "platform/testing.h"
#include "platform/win32.h"

namespace {

constexpr int kGo = 16;
constexpr int kCheck = 17;
constexpr int kText = 18;

using Message = std::tuple<HWND, UINT, WPARAM, LPARAM>;
std::vector<Message> messages;
std::function<void(HWND, UINT)> whenCalled;

INT_PTR CALLBACK Record(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    messages.emplace_back(dialog, message, wParam, lParam);
    if (whenCalled) whenCalled(dialog, message);
    return 5;
}

HWND MakeFrame(HWND parent = nullptr) {
    return CreateWindowExA(0, "STATIC", "frame", WS_VISIBLE, 10, 20, 300, 200, parent, nullptr,
                           nullptr, nullptr);
}

HWND OpenForm(HWND parent, LPCSTR form = "#20", LPARAM parameter = 0) {
    return CreateDialogParamA(nullptr, form, parent, Record, parameter);
}

class WindowsOfADialog : public testing::Test {
  protected:
    ~WindowsOfADialog() override {
        whenCalled = nullptr;
        DestroyWindow(frame);
        messages.clear();
        EXPECT_EQ(platform::CountWindows(), 0U);
    }

    HWND frame = MakeFrame();
    HWND dialog = OpenForm(frame, "#20", 77);
    HWND go = GetDlgItem(dialog, kGo);
    HWND check = GetDlgItem(dialog, kCheck);
};

TEST(ADialogTemplate, IsReadInEveryFormThatAScriptCanTake) {
    const std::pair<LPCSTR, platform::DialogTemplate> rows[] = {
        {"#20",
         {{"#32770", "A \"quoted\" // caption", 0x50C00040, 0, 3, 4, 100, 60},
          "MS Sans Serif",
          8,
          {{"Button", "&Go", 0x40010001, kGo, 1, 2, 30, 10},
           {"BUTTON", "Check", 0x50010003, kCheck, 5, -6, 7, 8},
           {"Static", "Odd", 0x50020000, kText, 0, 0, 1, 1},
           {"Edit", "", 0x50810000, 19, 0, 0, 1, 1}}}},
        {"#21",
         {{"#32770", "", 0x80000000, 0, 0, 0, 10, 10},
          "",
          0,
          {{"Static", "no font", 0x50020000, kText, 0, 0, 1, 1}}}}};
    for (const auto& [name, expected] : rows) {
        const HRSRC found = FindResourceA(nullptr, name, "#5");
        const auto* const data =
            static_cast<const std::byte*>(LockResource(LoadResource(nullptr, found)));
        EXPECT_EQ(platform::ReadDialog({data, SizeofResource(nullptr, found)}), expected) << name;
    }
}

TEST_F(WindowsOfADialog, AreMadeBeforeTheInitMessageAndSeenOnlyIfAllAboveThemAre) {
    const Message init{dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(go), 77};
    EXPECT_EQ(messages, std::vector{init});
    EXPECT_TRUE(GetParent(check) == dialog && GetParent(dialog) == frame);
    EXPECT_EQ(GetDlgItem(dialog, 99), nullptr);
    EXPECT_TRUE(IsWindowVisible(check) && !IsWindowVisible(go));
    EXPECT_TRUE(ShowWindow(dialog, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(check) || ShowWindow(dialog, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(check));
}

TEST_F(WindowsOfADialog, GiveTheirTextWithinTheBuffer) {
    EXPECT_TRUE(SetWindowTextA(dialog, "Detach"));
    std::array<char, 8> buffer{};
    buffer.fill('#');
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 4), 3);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 5), std::string("Det\0#", 5));
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 8), 6);
    EXPECT_FALSE(GetWindowTextA(dialog, buffer.data(), 0) || GetWindowTextA(dialog, nullptr, 8));
    EXPECT_EQ(std::string(buffer.data()), "Detach");
    EXPECT_TRUE(SetWindowTextA(dialog, nullptr));
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 8), 0);
}

TEST_F(WindowsOfADialog, TellTheProcedureOfAClickAndKeepItsExceptionInside) {
    messages.clear();
    for (const HWND control : {check, GetDlgItem(dialog, kText)})
        EXPECT_EQ(SendMessageA(control, BM_CLICK, 0, 0), 0);
    const Message click{dialog, WM_COMMAND, kCheck, reinterpret_cast<LPARAM>(check)};
    EXPECT_EQ(messages, std::vector{click}) << "a text is no button";
    EXPECT_EQ(SendMessageA(dialog, WM_COMMAND, 1, 0), 0);
    EXPECT_EQ(SendMessageA(dialog, WM_INITDIALOG, 0, 0), 5);
    whenCalled = [](HWND, UINT) { throw 1; };
    EXPECT_EQ(SendMessageA(dialog, WM_INITDIALOG, 0, 0), 0);
    EXPECT_TRUE(DestroyWindow(dialog) && !IsWindow(dialog));
}

TEST_F(WindowsOfADialog, EndWithTheirParentWhichIsToldFirst) {
    const HWND inner = OpenForm(dialog);
    messages.clear();
    int added = 0;
    whenCalled = [&](HWND told, UINT) {
        EXPECT_TRUE(IsWindow(told));
        if (told == inner && ++added < 4) OpenForm(dialog);
    };
    EXPECT_TRUE(DestroyWindow(dialog));
    ASSERT_GE(messages.size(), 2U);
    EXPECT_TRUE(std::get<HWND>(messages[0]) == dialog && std::get<HWND>(messages[1]) == inner);
    EXPECT_EQ(added, 1);
    EXPECT_FALSE(IsWindow(dialog) || IsWindow(inner) || IsWindow(go));
}

TEST_F(WindowsOfADialog, MayEndInsideTheirOwnProcedure) {
    whenCalled = [&](HWND told, UINT message) {
        DestroyWindow(told);
        if (message == WM_DESTROY) DestroyWindow(frame);
    };
    SendMessageA(check, BM_CLICK, 0, 0);
    EXPECT_FALSE(IsWindow(dialog) || IsWindow(frame));
    frame = MakeFrame();
    EXPECT_EQ(OpenForm(frame), nullptr) << "it did not live through its init message";
}

TEST_F(WindowsOfADialog, NeedATemplateAndAParentThatLives) {
    const HWND gone = MakeFrame();
    DestroyWindow(gone);
    EXPECT_FALSE(OpenForm(nullptr) || OpenForm(gone) || MakeFrame(gone)) << "a child needs one";
    EXPECT_FALSE(OpenForm(frame, MAKEINTRESOURCEA(1)) || OpenForm(frame, "20"));
    EXPECT_TRUE(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(20), frame, nullptr, 0));
}

TEST_F(WindowsOfADialog, AreToldFromStaleNullAndMadeUpHandles) {
    const HWND stale = OpenForm(frame);
    DestroyWindow(stale);
    const HWND successor = MakeFrame(frame);
    int local = 0;
    std::array<char, 6> buffer{};
    for (const HWND bad : {stale, HWND{}, static_cast<HWND>(static_cast<void*>(&local))}) {
        buffer[0] = '#';
        EXPECT_FALSE(IsWindow(bad) || IsWindowVisible(bad) || DestroyWindow(bad) ||
                     ShowWindow(bad, SW_SHOW) || SetWindowTextA(bad, "text") ||
                     GetWindowTextA(bad, buffer.data(), 4) || buffer[0] != '\0' ||
                     SetWindowLongPtrA(bad, GWLP_USERDATA, 1) ||
                     GetWindowLongPtrA(bad, GWLP_USERDATA) || GetDlgItem(bad, kGo) ||
                     GetParent(bad) || SendMessageA(bad, BM_CLICK, 0, 0));
    }
    EXPECT_EQ(GetWindowTextA(successor, buffer.data(), 6), 5);
}

}  // namespace
