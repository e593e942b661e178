#include <cstdint>

#include "core_link/trace_file.h"
#include "host/class_desc.h"
#include "host/custom_controls.h"
#include "platform/modules.h"
#include "platform/win32.h"
#include "plugin/descriptors.h"
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

// The routines by which the host knows a plug-in library. Their ordinals on Windows stand in
// exports.def.
MODULE_ROUTINE const char* LibDescription();
MODULE_ROUTINE int LibNumberClasses();
MODULE_ROUTINE ClassDesc* LibClassDesc(int index);
MODULE_ROUTINE std::uint32_t LibVersion();

const char* LibDescription() {
    return "Tarvo Lumiset v2.5";
}

int LibNumberClasses() {
    return kDescriptorCount;
}

ClassDesc* LibClassDesc(int index) {
    return DescriptorAt(index);
}

std::uint32_t LibVersion() {
    return kHostVersion;
}
