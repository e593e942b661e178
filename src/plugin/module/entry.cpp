#include "adaptor/trace_file.h"
#include "host/custom_controls.h"
#include "platform/win32.h"
#include "resources/resource_ids.h"

namespace {

void InitControlsOnce(HINSTANCE module) {
    static bool isDone = false;
    if (isDone) return;
    isDone = true;
    InitCustomControls(module);
    InitCommonControls();
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    theModule = module;
    InitControlsOnce(module);
    if (reason == DLL_PROCESS_DETACH) EndTrace();
    return TRUE;
}
