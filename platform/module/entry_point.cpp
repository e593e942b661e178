#include "platform/module/registration.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

const platform::EntryPointRegistration registration(&DllMain);

}  // namespace
