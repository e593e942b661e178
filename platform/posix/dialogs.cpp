#include "platform/posix/guarded.h"
#include "platform/posix/resources.h"
#include "platform/posix/window_table.h"
#include "platform/win32.h"

namespace platform {
namespace {

HWND AddDialog(const DialogTemplate& dialog, HINSTANCE instance, HWND parent, DLGPROC procedure) {
    Window window;
    window.windowClass = "#32770";  // the system's name for the class of dialogs
    window.text = dialog.caption;
    window.instance = instance;
    window.parent = parent;
    window.procedure = procedure;
    window.x = dialog.x;
    window.y = dialog.y;
    window.width = dialog.width;
    window.height = dialog.height;
    return AddWindow(std::move(window), dialog.style);
}

HWND AddControl(const ControlTemplate& control, HINSTANCE instance, HWND dialog) {
    Window window;
    window.windowClass = control.windowClass;
    window.text = control.text;
    window.instance = instance;
    window.parent = dialog;
    window.id = control.id;
    window.x = control.x;
    window.y = control.y;
    window.width = control.width;
    window.height = control.height;
    return AddWindow(std::move(window), control.style);
}

HWND CreateDialogOf(HINSTANCE instance, LPCSTR name, HWND parent, DLGPROC procedure,
                    LPARAM parameter) {
    const DialogTemplate* const dialog = FindDialog(instance, name);
    if (dialog == nullptr) return nullptr;
    const HWND handle = AddDialog(*dialog, instance, parent, procedure);
    if (handle == nullptr) return nullptr;
    HWND first = nullptr;
    for (const ControlTemplate& control : dialog->controls) {
        const HWND added = AddControl(control, instance, handle);
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
