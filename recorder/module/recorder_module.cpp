// The recorder as a library that any host's adaptor takes for the Core: the three routines of one,
// handed on to the real Core, with a tape or a watch between.

#include <memory>

#include "recorder/module/standing_between.h"
#include "tvl/core_interface.h"

namespace {

recorder::StandingBetween* standing = nullptr;  // ended by Leave, once nobody calls any more

recorder::StandingBetween& Standing() {
    if (!standing) standing = new recorder::StandingBetween;
    return *standing;
}

void Leave() {
    delete standing;
    standing = nullptr;
}

}  // namespace

TVL_CORE_ROUTINE std::uint32_t getVersion() {
    return Standing().GetVersion();
}

TVL_CORE_ROUTINE CoreInterface* attach(TVL::AdaptorInterface* adaptor) {
    return Standing().Attach(adaptor);
}

TVL_CORE_ROUTINE void detach(CoreInterface* core) {
    Standing().Detach(core);
}

// The real Core goes with this module, as it would go without it: behind `detach` there is still
// what an adaptor takes away that the Core has left to it. Of a process that ends on Windows the
// other threads are gone, with what they had locked: all is left to the system.
#if defined(_WIN32)
#include "platform/win32.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID isProcessEnding) {
    if (reason != DLL_PROCESS_DETACH) return TRUE;
    if (!isProcessEnding) Leave();
    return TRUE;
}
#else
__attribute__((destructor)) static void Unload() {
    Leave();
}
#endif
