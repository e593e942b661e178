// Tells by message boxes when it is entered and left, and what becomes of its dialogs.

#include "platform/modules.h"

namespace {

const struct Teller {
    static void Tell(const char* what) { MessageBoxA(nullptr, what, "telling", MB_OK); }
    ~Teller() { Tell("destroyed"); }
} teller;

INT_PTR CALLBACK TellEnd(HWND, UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) Teller::Tell("closed");
    return 0;
}

}  // namespace

MODULE_ROUTINE HWND openDialog(HINSTANCE module) {
    return CreateDialogParamA(module, "#10", nullptr, TellEnd, 0);
}

// Loads itself once more while it is entered.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    Teller::Tell(reason == DLL_PROCESS_ATTACH ? "attach" : "detach");
    if (reason == DLL_PROCESS_ATTACH) FreeLibrary(LoadLibraryA(OWN_FILE));
    return std::getenv("TELLING_REFUSES") == nullptr ? TRUE : FALSE;
}
