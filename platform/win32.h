#pragma once

// The services of Windows under their Windows names. On Windows they are the system's own;
// elsewhere the platform library provides the ones that are used here, over POSIX, with the same
// results. Everything is called from one thread. No function lets an exception out.

#if defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// Comes after <windows.h>, whose types it needs.
#include <commctrl.h>

// These macros would rename what this system calls by the same names.
#undef DrawText
#undef GetClassName
#undef GetCurrentTime
#undef GetMessage
#undef RegisterClass
#undef ReplaceFile
#undef SearchPath
#undef far
#undef interface
#undef near
#undef small

#else

#include <concepts>
#include <cstdint>

#include "platform/platform_api.h"

#define CALLBACK
#define WINAPI
#define APIENTRY

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using LONG_PTR = std::intptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using COLORREF = DWORD;
using LPVOID = void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LSTATUS = LONG;
using REGSAM = DWORD;

// Handles. Their values are tokens, never to be dereferenced.
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using HMENU = struct HMENU__*;
using HRSRC = struct HRSRC__*;
using HGLOBAL = struct HGLOBAL__*;
using HKEY = struct HKEY__*;

// A routine of a module; "platform/modules.h" gives it its real type.
using FARPROC = void (*)();

// Returns non-zero for a message that it handled.
using DLGPROC = INT_PTR(CALLBACK*)(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

struct POINT {
    LONG x;
    LONG y;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
inline constexpr int MAX_PATH = 260;

template <std::integral T>
constexpr WORD LOWORD(T value) {
    return static_cast<WORD>(static_cast<std::uintptr_t>(value) & 0xFFFF);
}

template <std::integral Low, std::integral High>
constexpr WPARAM MAKEWPARAM(Low low, High high) {
    return static_cast<WPARAM>(LOWORD(low)) | (static_cast<WPARAM>(LOWORD(high)) << 16);
}

// A resource's number in the place of its name.
inline LPSTR MAKEINTRESOURCEA(int id) {
    return reinterpret_cast<LPSTR>(static_cast<std::uintptr_t>(LOWORD(id)));
}

extern "C" {

// Modules --------------------------------------------------------------------------------------

// Reasons of the call of a module's entry point, `BOOL DllMain(HINSTANCE, DWORD reason, LPVOID)`.
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;

// Backslashes in the path become slashes and a closing ".dll" becomes ".so". Runs the module's
// entry point if it is the first load; null if there is no such module or its entry point refused.
PLATFORM_API HMODULE WINAPI LoadLibraryA(LPCSTR path);
// Null if the module itself exports nothing of that name.
PLATFORM_API FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR name);
// Takes one load back; the last one runs the entry point and unmaps the module.
PLATFORM_API BOOL WINAPI FreeLibrary(HMODULE module);
// Registry -------------------------------------------------------------------------------------

inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});

inline constexpr REGSAM KEY_READ = 0x20019;

inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;

inline constexpr LSTATUS ERROR_SUCCESS = 0;
inline constexpr LSTATUS ERROR_FILE_NOT_FOUND = 2;
inline constexpr LSTATUS ERROR_INVALID_HANDLE = 6;
inline constexpr LSTATUS ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr LSTATUS ERROR_INVALID_PARAMETER = 87;
inline constexpr LSTATUS ERROR_MORE_DATA = 234;

// The registry is a .reg file: the one that the environment variable LUMISET_REGISTRY names, else
// lumiset.reg beside the running program. It is looked at anew whenever a key is opened from a
// root. Names of keys and values compare without case. Each key that was opened is closed by
// RegCloseKey.
PLATFORM_API LSTATUS WINAPI RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access,
                                          HKEY* result);
// `*size` is the buffer's size, and then the value's; with a null buffer only the size is told. A
// text's size counts its NUL. `type` may be null.
PLATFORM_API LSTATUS WINAPI RegQueryValueExA(HKEY key, LPCSTR name, DWORD* reserved, DWORD* type,
                                             BYTE* data, DWORD* size);
PLATFORM_API LSTATUS WINAPI RegCloseKey(HKEY key);

// Files and time -------------------------------------------------------------------------------

// One level. The second argument is not used.
PLATFORM_API BOOL WINAPI CreateDirectoryA(LPCSTR path, void* security);
// Returns the length; if the buffer is too small, the size that it should have, NUL included.
PLATFORM_API DWORD WINAPI GetCurrentDirectoryA(DWORD size, LPSTR buffer);
// Milliseconds of a clock that only goes forward, and wraps.
PLATFORM_API DWORD WINAPI GetTickCount();

// Resources ------------------------------------------------------------------------------------

// A null module is the running program. Names of types compare without case. What a resource's
// functions give belongs to the module and stays valid as long as the module is loaded.
PLATFORM_API HRSRC WINAPI FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);
PLATFORM_API DWORD WINAPI SizeofResource(HMODULE module, HRSRC resource);
PLATFORM_API HGLOBAL WINAPI LoadResource(HMODULE module, HRSRC resource);
PLATFORM_API LPVOID WINAPI LockResource(HGLOBAL data);

// Windows and controls -------------------------------------------------------------------------
// A handle that is null, made up, or of a window that is gone makes each of these fail without
// effect.

inline constexpr UINT WM_DESTROY = 2;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr UINT WM_INITDIALOG = 272;
inline constexpr UINT WM_COMMAND = 273;

inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;

inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_EX_TOOLWINDOW = 0x80;
inline constexpr DWORD WS_EX_NOACTIVATE = 0x08000000;

inline constexpr int GWLP_USERDATA = -21;

inline constexpr UINT GW_HWNDNEXT = 2;
inline constexpr UINT GW_CHILD = 5;

// Makes the dialog of the template and its controls, and sends it WM_INITDIALOG with `parameter`. A
// child dialog must have a parent. Null if there is no such template, or the dialog did not live
// through its init message.
PLATFORM_API HWND WINAPI CreateDialogParamA(HINSTANCE instance, LPCSTR templateName, HWND parent,
                                            DLGPROC procedure, LPARAM parameter);
// A window without a procedure, such as a program's main window ("STATIC").
PLATFORM_API HWND WINAPI CreateWindowExA(DWORD extendedStyle, LPCSTR className, LPCSTR windowName,
                                         DWORD style, int x, int y, int width, int height,
                                         HWND parent, HMENU menuOrId, HINSTANCE instance,
                                         LPVOID parameter);
// The window gets WM_DESTROY while it is still whole, then its children go likewise.
PLATFORM_API BOOL WINAPI DestroyWindow(HWND window);

PLATFORM_API BOOL WINAPI IsWindow(HWND window);
// True if the window and all above it are shown.
PLATFORM_API BOOL WINAPI IsWindowVisible(HWND window);
// Returns whether the window was shown before.
PLATFORM_API BOOL WINAPI ShowWindow(HWND window, int command);
PLATFORM_API HWND WINAPI GetParent(HWND window);
PLATFORM_API HWND WINAPI GetDlgItem(HWND dialog, int id);
PLATFORM_API int WINAPI GetDlgCtrlID(HWND control);
// The first child, or the sibling that comes next; null for any other relation.
PLATFORM_API HWND WINAPI GetWindow(HWND window, UINT relation);
// Returns the length of what was copied, at most `size` - 1. A button's class reads "Button",
// however its maker spelled it.
PLATFORM_API int WINAPI GetClassNameA(HWND window, LPSTR buffer, int size);

PLATFORM_API BOOL WINAPI SetWindowTextA(HWND window, LPCSTR text);
// Returns the length of what was copied, at most `size` - 1.
PLATFORM_API int WINAPI GetWindowTextA(HWND window, LPSTR buffer, int size);

// GWLP_USERDATA is the one index there is.
PLATFORM_API LONG_PTR WINAPI GetWindowLongPtrA(HWND window, int index);
PLATFORM_API LONG_PTR WINAPI SetWindowLongPtrA(HWND window, int index, LONG_PTR value);

// A dialog's procedure gets the message. As the system has it, the result is what the procedure
// returned for WM_INITDIALOG, and 0 for the rest. BM_CLICK to a button sends WM_COMMAND to the
// button's parent, with the button's id in the low word and its handle as lParam.
PLATFORM_API LRESULT WINAPI SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// There is nothing to initialise: every kind of control is there from the start.
PLATFORM_API void WINAPI InitCommonControls();

// Message boxes --------------------------------------------------------------------------------

inline constexpr UINT MB_OK = 0;
inline constexpr UINT MB_ICONERROR = 16;
inline constexpr int IDOK = 1;

// Goes to the handler of "platform/message_box.h", else to the standard error stream. Returns IDOK.
PLATFORM_API int WINAPI MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);

}  // extern "C"

#endif
