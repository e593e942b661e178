#include "platform/common/resources.h"
#include "platform/posix/guarded.h"
#include "platform/posix/window_table.h"
#include "platform/win32.h"

namespace platform {
namespace {

HWND CreateDialogOf(HINSTANCE instance, LPCSTR name, HWND parent, DLGPROC procedure,
                    LPARAM parameter) {
    const HRSRC found = FindResourceA(instance, name, kDialogType);
    if (found == nullptr) return nullptr;
    const void* const bytes = LockResource(LoadResource(instance, found));
    const DialogTemplate dialog =
        ReadDialog({static_cast<const std::byte*>(bytes), SizeofResource(instance, found)});
    const HWND handle = AddWindow({dialog.window, instance, parent, procedure});
    if (handle == nullptr) return nullptr;
    HWND first = nullptr;
    for (const WindowTemplate& control : dialog.controls) {
        const HWND added = AddWindow({control, instance, handle});
        if (first == nullptr) first = added;
    }
    SendMessageA(handle, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter);
    return IsWindow(handle) ? handle : nullptr;
}

}  // namespace
}  // namespace platform

extern "C" HWND CreateDialogParamA(HINSTANCE instance, LPCSTR templateName, HWND parent,
                                   DLGPROC procedure, LPARAM parameter) {
    return platform::Guarded<HWND>(nullptr, [&] {
        return platform::CreateDialogOf(instance, templateName, parent, procedure, parameter);
    });
}
