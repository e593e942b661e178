// What the plug-in takes for the Core while a session has a seat: the routines of one, handed on to
// the library that sits there.

#include "platform/modules.h"
#include "seat/seated_core.h"

using headless::SeatedCore;

MODULE_ROUTINE std::uint32_t getVersion();
MODULE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor);
MODULE_ROUTINE void detach(CoreInterface* core);

std::uint32_t getVersion() {
    return SeatedCore::Get().GetVersion();
}

CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return SeatedCore::Get().Attach(adaptor);
}

void detach(CoreInterface* core) {
    SeatedCore::Get().Detach(core);
}

// The seated library comes and goes with this one, so that one which cannot be loaded is to the
// plug-in a Core that cannot. When the process ends with it, the system frees everything.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID isProcessEnding) {
    if (reason == DLL_PROCESS_ATTACH) return SeatedCore::Get().Load() ? TRUE : FALSE;
    if (reason == DLL_PROCESS_DETACH && !isProcessEnding) SeatedCore::Get().Free();
    return TRUE;
}
