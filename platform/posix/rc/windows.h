// What resource scripts use of the system's constants, for the resource compiler where there is no
// <windows.h>.
#pragma once

#define WS_POPUP 0x80000000L
#define WS_CHILD 0x40000000L
#define WS_VISIBLE 0x10000000L
#define WS_TABSTOP 0x00010000L
#define DS_SETFONT 0x40L
#define BS_AUTOCHECKBOX 3L
