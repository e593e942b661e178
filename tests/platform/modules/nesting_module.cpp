// Loads the telling module while it is entered itself, and has a dialog of its own.
#include <string>

#include "platform/modules.h"
#include "platform/win32.h"

namespace {

HINSTANCE instance = nullptr;
HMODULE nested = nullptr;

HMODULE LoadNeighbour() {
    char path[1024];
    GetModuleFileNameA(instance, path, sizeof path);
    const std::string own = path;
    return LoadLibraryA((own.substr(0, own.rfind('/')) + "\\telling_module.dll").c_str());
}

INT_PTR CALLBACK TellMessages(HWND, UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) MessageBoxA(nullptr, "dialog destroyed", "nesting", MB_OK);
    return 0;
}

}  // namespace

MODULE_ROUTINE HWND openDialog() {
    return CreateDialogParamA(instance, MAKEINTRESOURCEA(10), nullptr, TellMessages, 0);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_DETACH) return FreeLibrary(nested);
    instance = module;
    nested = LoadNeighbour();
    return nested == nullptr ? FALSE : TRUE;
}
