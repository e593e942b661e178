#include "platform/message_box.h"

#include <array>
#include <cstring>
#include <utility>

#include "platform/win32.h"

// The system's own boxes, pressed by nobody: while there is a handler, a hook hears of every dialog
// that is made, and once the box runs its own message loop a timer finds it there, reads it, and
// sends it the command of its button.
namespace platform {
namespace {

constexpr char kDialogClass[] = "#32770";
constexpr int kTextControl = 0xFFFF;
constexpr char kAnswered[] = "LumisetAnswered";
constexpr UINT kSoon = 1;  // milliseconds

// Never destroyed: a message box can be asked for while the program ends.
MessageBoxHandler& Handler() {
    static auto* const handler = new MessageBoxHandler;
    return *handler;
}

bool IsOfClass(HWND window, const char* name) {
    std::array<char, 16> found{};
    GetClassNameA(window, found.data(), static_cast<int>(found.size()));
    return std::strcmp(found.data(), name) == 0;
}

std::string TextOf(HWND window) {
    const int length = GetWindowTextLengthA(window);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    text.resize(static_cast<std::size_t>(GetWindowTextA(window, text.data(), length + 1)));
    return text;
}

BOOL CALLBACK LookForErrorIcon(HWND control, LPARAM isThere) {
    const auto icon = reinterpret_cast<HICON>(SendMessageA(control, STM_GETICON, 0, 0));
    const bool isError =
        IsOfClass(control, "Static") && icon && icon == LoadIconA(nullptr, IDI_ERROR);
    if (isError) *reinterpret_cast<bool*>(isThere) = true;
    return !isError;
}

UINT StyleOf(HWND box) {
    bool hasErrorIcon = false;
    EnumChildWindows(box, LookForErrorIcon, reinterpret_cast<LPARAM>(&hasErrorIcon));
    return hasErrorIcon ? MB_OK | MB_ICONERROR : MB_OK;
}

// A copy of the handler, since it can replace itself. What it throws ends here.
void Tell(HWND box) {
    try {
        const MessageBoxHandler handler = Handler();
        if (handler)
            handler({.owner = GetWindow(box, GW_OWNER),
                     .text = TextOf(GetDlgItem(box, kTextControl)),
                     .caption = TextOf(box),
                     .style = StyleOf(box)});
    } catch (...) {
        OutputDebugStringA("a message box was answered by a handler that failed");
    }
}

BOOL CALLBACK Answer(HWND window, LPARAM) {
    const bool isBox = IsOfClass(window, kDialogClass) && GetDlgItem(window, kTextControl);
    if (!isBox || GetPropA(window, kAnswered)) return TRUE;
    SetPropA(window, kAnswered, window);
    Tell(window);
    RemovePropA(window, kAnswered);
    SendMessageA(window, WM_COMMAND, IDOK, 0);
    return TRUE;
}

void CALLBACK AnswerBoxes(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    EnumThreadWindows(GetCurrentThreadId(), Answer, 0);
}

LRESULT CALLBACK HearOfWindows(int code, WPARAM window, LPARAM parameter) {
    if (code == HCBT_CREATEWND && IsOfClass(reinterpret_cast<HWND>(window), kDialogClass))
        SetTimer(nullptr, 0, kSoon, AnswerBoxes);
    return CallNextHookEx(nullptr, code, window, parameter);
}

}  // namespace

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler) {
    static HHOOK hook = nullptr;
    if (handler && !hook)
        hook = SetWindowsHookExA(WH_CBT, HearOfWindows, nullptr, GetCurrentThreadId());
    if (!handler && hook) UnhookWindowsHookEx(std::exchange(hook, nullptr));
    return std::exchange(Handler(), std::move(handler));
}

}  // namespace platform
