// Tells by message boxes when it is entered and left, and what becomes of its dialogs.
#include <cstdlib>

#include "platform/modules.h"
#include "platform/win32.h"

namespace {

void Tell(const char* what) {
    MessageBoxA(nullptr, what, "telling", MB_OK);
}

struct Teller {
    Teller() { Tell("constructed"); }
    ~Teller() { Tell("destroyed"); }
};

const Teller teller;
HINSTANCE instance = nullptr;
int calls = 0;

INT_PTR CALLBACK TellEnd(HWND, UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) Tell("closed");
    return 0;
}

}  // namespace

MODULE_ROUTINE int answer() {
    return ++calls;
}

MODULE_ROUTINE HWND openDialog() {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(10), nullptr, TellEnd, 0);
}

// Loads itself once more while it is entered.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    instance = module;
    Tell(reason == DLL_PROCESS_ATTACH ? "attach" : "detach");
    if (reason == DLL_PROCESS_ATTACH) FreeLibrary(LoadLibraryA(OWN_FILE));
    return std::getenv("TELLING_REFUSES") == nullptr ? TRUE : FALSE;
}
