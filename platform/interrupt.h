#pragma once

#include "platform/platform_api.h"

namespace platform {

// While one lives, Ctrl-C (SIGINT; on Windows Ctrl-Break as well) is noted and does not end the
// process, so that the work under way can end as it should. A second one ends the process as
// usual, for work that does not ask. They nest. Each module that links this for itself has a copy
// of what was noted, and hands what it notes on to whoever was there before; the copy that came
// first decides on the second Ctrl-C. A process that was started to ignore Ctrl-C goes on doing so.
// They are made and ended by one thread, the last one first.
class PLATFORM_API Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    // Whether there was a Ctrl-C since the outermost one that lives began. Never while none does.
    static bool IsWanted();

    // The work that it was meant for has ended. The next one is for what follows.
    static void Meet();
};

}  // namespace platform
