#include "platform/win32.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    MessageBoxA(nullptr, reason == DLL_PROCESS_ATTACH ? "attach" : "detach", "refusing", MB_OK);
    return FALSE;
}
