#include "controllers/conversion.h"
#include "controllers/transform_control.h"
#include "core_link/trace_file.h"
#include "foundation/thrown.h"
#include "host/interface.h"
#include "resources/resource_ids.h"

// The page of a TransformControl in the motion panel: one button, which converts the controller.
// The window's user data is the controller until it has been converted.

namespace {

constexpr const char* kPageTitle = "Tarvo Quillmark MoCap";

TransformControl* StoredController(HWND page) {
    return reinterpret_cast<TransformControl*>(GetWindowLongPtrA(page, GWLP_USERDATA));
}

void StoreController(HWND page, const TransformControl* controller) {
    SetWindowLongPtrA(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(controller));
}

}  // namespace

void TransformControl::BeginEditParams(IObjParam* ip, std::uint32_t, Animatable*) {
    LeavePage();
    editInterface = ip;
    rollupWindow =
        ip->AddRollupPage(theModule, MAKEINTRESOURCEA(ConvertDialog), ConvertPanelDlgProc,
                          kPageTitle, reinterpret_cast<LPARAM>(this), 0, PageCategory);
}

void TransformControl::EndEditParams(IObjParam* ip, std::uint32_t, Animatable*) {
    ip->DeleteRollupPage(rollupWindow);
    rollupWindow = nullptr;
}

void TransformControl::LeavePage() {
    if (StoredController(rollupWindow) == this) StoreController(rollupWindow, nullptr);
}

INT_PTR CALLBACK ConvertPanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, GWLP_USERDATA, lParam);
        return 1;
    }
    if (message != WM_COMMAND) return 0;
    const TraceAfter trace;
    TransformControl* const controller = StoredController(window);
    if (LOWORD(wParam) == ConvertButton && controller) {
        const bool isDone =
            TVL::TraceIfThrown("a press of the page", [&] { ConvertToPRSController(controller); });
        // The window can be gone by now, which makes this do nothing.
        if (isDone) StoreController(window, nullptr);
    }
    return 1;
}
