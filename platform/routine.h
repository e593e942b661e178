#pragma once

#include "platform/win32.h"

// Marks a routine that a module exports by its name.
#if defined(_WIN32)
#define MODULE_ROUTINE extern "C" __declspec(dllexport)
#else
#define MODULE_ROUTINE extern "C" __attribute__((visibility("default")))
#endif

namespace platform {

// A module's routine as the type that it really has; null if the module exports none of that name.
template <class Type>
Type* Routine(HMODULE module, const char* name) {
    // By way of the one type that every routine may be cast to and from.
    return reinterpret_cast<Type*>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace platform
