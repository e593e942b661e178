// Tells by message boxes when it is entered and left.
#include "platform/modules.h"
#include "platform/win32.h"

namespace {

struct Teller {
    Teller() { MessageBoxA(nullptr, "constructed", "telling", MB_OK); }
    ~Teller() { MessageBoxA(nullptr, "destroyed", "telling", MB_OK); }
};

const Teller teller;
int calls = 0;

}  // namespace

MODULE_ROUTINE int answer() {
    return ++calls;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    MessageBoxA(nullptr, reason == DLL_PROCESS_ATTACH ? "attach" : "detach", "telling", MB_OK);
    return TRUE;
}
