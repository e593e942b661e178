#pragma once

#include <cstddef>
#include <span>

#include "platform/platform_api.h"
#include "platform/win32.h"

// What a module brings with it: its entry point and its resources. A module exports its contract
// and nothing else, so the loader cannot look these up; the module hands them over while it is
// being mapped, before its entry point runs, and takes them back while it is being unmapped. A
// program's own resources come in the same way. A module is known by the address at which it is
// mapped, which is its HINSTANCE.
//
// Modules do not write this themselves: the target platform_module registers a DllMain, and
// lumiset_resources() what the resource compiler made of a script.
namespace platform {

using EntryPoint = BOOL(WINAPI*)(HINSTANCE module, DWORD reason, LPVOID reserved);

// The bytes of a .res file, which stay where they are as long as the module is mapped.
using ResourceFile = std::span<const std::byte>;

// The module is the one that the entry point or the bytes lie in.
PLATFORM_API void RegisterEntryPoint(EntryPoint entryPoint) noexcept;
PLATFORM_API void UnregisterEntryPoint(EntryPoint entryPoint) noexcept;
PLATFORM_API void RegisterResources(ResourceFile file) noexcept;
PLATFORM_API void UnregisterResources(ResourceFile file) noexcept;

// Registered for as long as the module that holds this object is mapped.
template <class What, void (*Register)(What) noexcept, void (*Unregister)(What) noexcept>
class Registration {
  public:
    explicit Registration(What what) noexcept : what_(what) { Register(what_); }
    ~Registration() { Unregister(what_); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    What what_;
};

using EntryPointRegistration = Registration<EntryPoint, RegisterEntryPoint, UnregisterEntryPoint>;
using ResourceRegistration = Registration<ResourceFile, RegisterResources, UnregisterResources>;

}  // namespace platform
