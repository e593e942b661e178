#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "platform/testing.h"
#include "platform/win32.h"

namespace {

constexpr int kFormsDialog = 20;
constexpr int kGo = 16;
constexpr int kCheck = 17;
constexpr int kText = 18;

struct Message {
    HWND dialog;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

std::vector<Message> messages;
std::function<void(const Message&)> whenCalled;

INT_PTR CALLBACK Record(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    const Message called{dialog, message, wParam, lParam};
    messages.push_back(called);
    if (whenCalled) whenCalled(called);
    return 5;
}

std::string TextOf(HWND window) {
    std::array<char, 64> buffer{};
    GetWindowTextA(window, buffer.data(), static_cast<int>(buffer.size()));
    return buffer.data();
}

HWND MakeFrame(HWND parent = nullptr) {
    return CreateWindowExA(0, "STATIC", "frame", WS_VISIBLE, 10, 20, 300, 200, parent, nullptr,
                           nullptr, nullptr);
}

HWND OpenForms(HWND parent, LPARAM parameter = 0) {
    return CreateDialogParamA(nullptr, MAKEINTRESOURCEA(kFormsDialog), parent, Record, parameter);
}

class WindowsOfADialog : public testing::Test {
  protected:
    void SetUp() override {
        frame = MakeFrame();
        dialog = OpenForms(frame, 77);
        ASSERT_TRUE(IsWindow(dialog));
    }

    void TearDown() override {
        whenCalled = nullptr;
        DestroyWindow(frame);
        messages.clear();
        EXPECT_EQ(platform::CountWindows(), 0U);
    }

    HWND frame = nullptr;
    HWND dialog = nullptr;
};

TEST_F(WindowsOfADialog, AreMadeFromTheTemplateBeforeTheInitMessage) {
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].dialog, dialog);
    EXPECT_EQ(messages[0].message, WM_INITDIALOG);
    EXPECT_EQ(messages[0].lParam, 77);
    EXPECT_EQ(messages[0].wParam, reinterpret_cast<WPARAM>(GetDlgItem(dialog, kGo)));
    EXPECT_EQ(TextOf(dialog), "A \"quoted\" // caption");
    EXPECT_EQ(TextOf(GetDlgItem(dialog, kGo)), "&Go");
    EXPECT_EQ(TextOf(GetDlgItem(dialog, kText)), "Odd");
    const HWND check = GetDlgItem(dialog, kCheck);
    EXPECT_EQ(GetDlgCtrlID(check), kCheck);
    EXPECT_EQ(GetParent(check), dialog);
    EXPECT_EQ(GetParent(dialog), frame);
    EXPECT_EQ(GetDlgItem(dialog, 99), nullptr);
    RECT area{};
    ASSERT_TRUE(GetWindowRect(check, &area));
    EXPECT_EQ(area.left, 10 + 3 + 5);
    EXPECT_EQ(area.top, 20 + 4 - 6);
    EXPECT_EQ(area.right - area.left, 7);
    EXPECT_EQ(area.bottom - area.top, 8);
    constexpr int farAway = std::numeric_limits<int>::max();
    const HWND remote = CreateWindowExA(0, "STATIC", nullptr, 0, farAway, farAway, farAway, farAway,
                                        frame, nullptr, nullptr, nullptr);
    ASSERT_TRUE(GetWindowRect(remote, &area));
    EXPECT_EQ(area.right, farAway);
}

TEST_F(WindowsOfADialog, AreSeenOnlyIfAllAboveThemAre) {
    const HWND check = GetDlgItem(dialog, kCheck);
    EXPECT_TRUE(IsWindowVisible(check));
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, kGo)));
    EXPECT_TRUE(ShowWindow(dialog, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(check));
    EXPECT_FALSE(ShowWindow(dialog, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(check));
}

TEST_F(WindowsOfADialog, GiveTheirTextWithinTheBuffer) {
    EXPECT_TRUE(SetWindowTextA(dialog, "Detach"));
    std::array<char, 8> buffer{};
    buffer.fill('#');
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 4), 3);
    EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + 5), std::string("Det\0#", 5));
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 8), 6);
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 0), 0);
    EXPECT_EQ(GetWindowTextA(dialog, nullptr, 8), 0);
    EXPECT_EQ(std::string(buffer.data()), "Detach");
    EXPECT_TRUE(SetWindowTextA(dialog, nullptr));
    EXPECT_EQ(TextOf(dialog), "");
}

TEST_F(WindowsOfADialog, TellTheProcedureOfAClickAndKeepItsExceptionInside) {
    messages.clear();
    const HWND check = GetDlgItem(dialog, kCheck);
    EXPECT_EQ(SendDlgItemMessageA(dialog, kCheck, BM_CLICK, 0, 0), 0);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].dialog, dialog);
    EXPECT_EQ(messages[0].message, WM_COMMAND);
    EXPECT_EQ(messages[0].wParam, MAKEWPARAM(kCheck, 0));
    EXPECT_EQ(messages[0].lParam, reinterpret_cast<LPARAM>(check));
    SendDlgItemMessageA(dialog, kText, BM_CLICK, 0, 0);
    EXPECT_EQ(messages.size(), 1U) << "a text is no button";
    EXPECT_EQ(SendMessageA(dialog, WM_COMMAND, 1, 0), 0);
    EXPECT_EQ(SendMessageA(dialog, WM_INITDIALOG, 0, 0), 5);
    whenCalled = [](const Message&) { throw 1; };
    EXPECT_EQ(SendMessageA(dialog, WM_INITDIALOG, 0, 0), 0);
    EXPECT_TRUE(DestroyWindow(dialog));
    EXPECT_FALSE(IsWindow(dialog));
}

TEST_F(WindowsOfADialog, EndWithTheirParentWhichIsToldFirst) {
    const HWND inner = OpenForms(dialog);
    const HWND go = GetDlgItem(inner, kGo);
    messages.clear();
    bool wereWhole = true;
    int added = 0;
    whenCalled = [&](const Message& message) {
        wereWhole &= IsWindow(message.dialog) != 0;
        if (message.dialog == inner && ++added < 4) OpenForms(dialog);
    };
    EXPECT_TRUE(DestroyWindow(dialog));
    ASSERT_GE(messages.size(), 2U);
    EXPECT_EQ(messages[0].dialog, dialog);
    EXPECT_EQ(messages[1].dialog, inner);
    EXPECT_EQ(added, 1);
    EXPECT_TRUE(wereWhole);
    for (const HWND gone : {dialog, inner, go})
        EXPECT_FALSE(IsWindow(gone));
}

TEST_F(WindowsOfADialog, MayEndInsideTheirOwnProcedure) {
    whenCalled = [&](const Message& message) {
        DestroyWindow(message.dialog);
        if (message.message == WM_DESTROY) DestroyWindow(frame);
    };
    SendDlgItemMessageA(dialog, kCheck, BM_CLICK, 0, 0);
    EXPECT_FALSE(IsWindow(dialog));
    EXPECT_FALSE(IsWindow(frame));
    frame = MakeFrame();
    EXPECT_EQ(OpenForms(frame), nullptr) << "it did not live through its init message";
}

TEST_F(WindowsOfADialog, NeedATemplateAndAParentThatLives) {
    const HWND gone = MakeFrame();
    DestroyWindow(gone);
    EXPECT_EQ(OpenForms(nullptr), nullptr) << "a child without a parent";
    EXPECT_EQ(OpenForms(gone), nullptr);
    EXPECT_EQ(MakeFrame(gone), nullptr);
    EXPECT_EQ(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(1), frame, Record, 0), nullptr);
    EXPECT_EQ(CreateDialogParamA(nullptr, "20", frame, Record, 0), nullptr);
    EXPECT_TRUE(IsWindow(CreateDialogParamA(nullptr, "#20", frame, nullptr, 0)));
    const HWND popup = CreateDialogParamA(nullptr, "#21", nullptr, nullptr, 0);
    EXPECT_EQ(TextOf(GetDlgItem(popup, kText)), "no font");
    EXPECT_TRUE(DestroyWindow(popup));
}

TEST_F(WindowsOfADialog, AreToldFromStaleNullAndMadeUpHandles) {
    const HWND stale = OpenForms(frame);
    DestroyWindow(stale);
    const HWND successor = MakeFrame(frame);
    int local = 0;
    const HWND made = static_cast<HWND>(static_cast<void*>(&local));
    for (const HWND bad : {stale, HWND{}, made}) {
        std::array<char, 4> buffer{'#'};
        RECT area{};
        EXPECT_FALSE(IsWindow(bad));
        EXPECT_FALSE(IsWindowVisible(bad));
        EXPECT_FALSE(DestroyWindow(bad));
        EXPECT_FALSE(ShowWindow(bad, SW_SHOW));
        EXPECT_FALSE(SetWindowTextA(bad, "text"));
        EXPECT_EQ(GetWindowTextA(bad, buffer.data(), 4), 0);
        EXPECT_EQ(buffer[0], '\0');
        EXPECT_EQ(SetWindowLongPtrA(bad, GWLP_USERDATA, 1), 0);
        EXPECT_EQ(GetWindowLongPtrA(bad, GWLP_USERDATA), 0);
        EXPECT_EQ(GetDlgItem(bad, kGo), nullptr);
        EXPECT_EQ(GetParent(bad), nullptr);
        EXPECT_EQ(GetDlgCtrlID(bad), 0);
        EXPECT_FALSE(GetWindowRect(bad, &area));
        EXPECT_EQ(SendMessageA(bad, BM_CLICK, 0, 0), 0);
        EXPECT_EQ(SendDlgItemMessageA(bad, kGo, WM_COMMAND, 0, 0), 0);
    }
    EXPECT_EQ(TextOf(successor), "frame");
}

}  // namespace
