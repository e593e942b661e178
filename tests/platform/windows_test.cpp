#include "platform/common/resources.h"
#include "tests/platform/platform_test.h"

namespace {

namespace fs = std::filesystem;

enum { kGo = 16, kCheck, kText };

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
           {"Static", "Odd", 0x50020000, kText, 0, 0, 1, 1}}}},
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

TEST(AResource, IsFoundByNumberAndTypeAndReadThroughItsOwnHandleAlone) {
    const auto number = MAKEINTRESOURCEA(22);
    const HRSRC note = FindResourceA(nullptr, number, "nOTE");
    EXPECT_NE(LockResource(LoadResource(nullptr, note)), nullptr) << "though it is empty";
    EXPECT_FALSE(FindResourceA(nullptr, number, "Not") || FindResourceA(nullptr, "#22x", "Note"));
    for (const HRSRC bad : {HRSRC{}, MadeUp<HRSRC>()})
        EXPECT_FALSE(SizeofResource(nullptr, bad) || LoadResource(nullptr, bad));
}

TEST_F(WindowsOfADialog, AreMadeBeforeTheInitMessageAndTellOfClicks) {
    const Message init{dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(go), 77};
    EXPECT_EQ(messages, std::vector{init});
    EXPECT_TRUE(GetParent(check) == dialog && GetParent(dialog) == frame);
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

TEST_F(WindowsOfADialog, AreSeenIfAllAboveThemAreAndGiveTheirTextWithinTheBuffer) {
    EXPECT_TRUE(IsWindowVisible(check) && !IsWindowVisible(go));
    EXPECT_TRUE(ShowWindow(dialog, SW_HIDE) && !IsWindowVisible(check));
    EXPECT_TRUE(!ShowWindow(dialog, SW_SHOW) && IsWindowVisible(check));
    EXPECT_TRUE(SetWindowTextA(dialog, "Detach"));
    std::string buffer(8, '#');
    EXPECT_EQ(GetWindowTextA(dialog, buffer.data(), 4), 3);
    EXPECT_FALSE(GetWindowTextA(dialog, buffer.data(), 0) || GetWindowTextA(dialog, nullptr, 8));
    EXPECT_EQ(buffer, "Det\0####"s);
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

TEST_F(WindowsOfADialog, MayEndInsideTheirOwnProcedureAndComeWithAParentThatLives) {
    whenCalled = [&](HWND told, UINT message) {
        DestroyWindow(told);
        if (message == WM_DESTROY) DestroyWindow(frame);
    };
    SendMessageA(check, BM_CLICK, 0, 0);
    EXPECT_FALSE(IsWindow(dialog) || IsWindow(frame));
    const HWND gone = std::exchange(frame, MakeFrame());
    EXPECT_EQ(OpenForm(frame), nullptr) << "it did not live through its init message";
    frame = MakeFrame();
    whenCalled = nullptr;
    EXPECT_FALSE(OpenForm(nullptr) || OpenForm(gone) || MakeFrame(gone)) << "a child needs one";
    EXPECT_FALSE(OpenForm(frame, "#1") || OpenForm(frame, "20"));
    EXPECT_TRUE(CreateDialogParamA(nullptr, "#20", frame, nullptr, 0));
}

TEST_F(WindowsOfADialog, AreToldFromStaleNullAndMadeUpHandles) {
    const HWND stale = OpenForm(frame);
    DestroyWindow(stale);
    const HWND successor = MakeFrame(frame);
    char text[6] = {};
    for (const HWND bad : {stale, HWND{}, MadeUp<HWND>()}) {
        text[0] = '#';
        EXPECT_FALSE(IsWindow(bad) || IsWindowVisible(bad) || DestroyWindow(bad) ||
                     ShowWindow(bad, SW_SHOW) || SetWindowTextA(bad, "text") ||
                     GetWindowTextA(bad, text, 4) || text[0] != '\0' ||
                     SetWindowLongPtrA(bad, GWLP_USERDATA, 1) ||
                     GetWindowLongPtrA(bad, GWLP_USERDATA) || GetDlgItem(bad, kGo) ||
                     GetParent(bad) || SendMessageA(bad, BM_CLICK, 0, 0));
    }
    EXPECT_EQ(GetWindowTextA(successor, text, 6), 5);
}

TEST(ADirectory, IsMadeOneLevelDeepAndToldIfItFitsAndElseByItsSize) {
    const TemporaryFolder folder;
    const std::string base = folder.Path().string();
    EXPECT_TRUE(CreateDirectoryA((base + "\\\\data\\").c_str(), nullptr));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "data"));
    EXPECT_FALSE(CreateDirectoryA((base + "\\data").c_str(), nullptr)) << "it is there";
    EXPECT_FALSE(CreateDirectoryA((base + "\\a\\b").c_str(), nullptr)) << "two levels";
    EXPECT_FALSE(CreateDirectoryA("", nullptr) || CreateDirectoryA(nullptr, nullptr));

    const std::string directory = fs::current_path().string() + '\0';
    const auto needed = static_cast<DWORD>(directory.size());
    std::string buffer(directory.size(), '#');
    EXPECT_EQ(GetCurrentDirectoryA(0, nullptr), needed);
    EXPECT_EQ(GetCurrentDirectoryA(needed - 1, buffer.data()), needed);
    EXPECT_EQ(buffer, std::string(directory.size(), '#'));
    EXPECT_EQ(GetCurrentDirectoryA(needed, buffer.data()), needed - 1);
    EXPECT_EQ(buffer, directory);
}

TEST(AMessageBox, ThatNobodyHandlesIsOnStandardError) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(MessageBoxA(nullptr, "text", "caption", MB_OK), IDOK);
    MessageBoxA(nullptr, nullptr, nullptr, MB_OK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\nError: \n");
}

}  // namespace
