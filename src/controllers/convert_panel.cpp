#include "controllers/convert_panel.h"

#include "controllers/conversion.h"
#include "controllers/transform_control.h"
#include "foundation/thrown.h"
#include "host/interface.h"
#include "resources/module_instance.h"
#include "resources/resource_ids.h"

namespace {

constexpr const char* kPageTitle = "Tarvo Quillmark MoCap";

TransformControl* StoredController(HWND page) {
    return reinterpret_cast<TransformControl*>(GetWindowLongPtrA(page, GWLP_USERDATA));
}

void StoreController(HWND page, const TransformControl* controller) {
    SetWindowLongPtrA(page, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(controller));
}

}  // namespace

HWND AddConvertPage(IObjParam& ip, TransformControl& controller) {
    return ip.AddRollupPage(ModuleInstance(), MAKEINTRESOURCEA(ConvertDialog), ConvertPanelDlgProc,
                            kPageTitle, reinterpret_cast<LPARAM>(&controller), 0, PageCategory);
}

void ForgetController(HWND page, const TransformControl& controller) {
    if (StoredController(page) == &controller) StoreController(page, nullptr);
}

INT_PTR CALLBACK ConvertPanelDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(window, GWLP_USERDATA, lParam);
        return 1;
    }
    if (message != WM_COMMAND) return 0;
    TransformControl* const controller = StoredController(window);
    if (LOWORD(wParam) == ConvertButton && controller) {
        const auto thrown = TVL::ThrownBy([&] { ConvertToPRSController(controller); });
        if (thrown) TVL::TraceThrown("a press of the page", *thrown);
        // The window can be gone by now, which makes this do nothing.
        StoreController(window, nullptr);
    }
    return 1;
}
