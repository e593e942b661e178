#pragma once

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
// lumiset_resources() makes the tables from a resource script.
namespace platform {

struct ControlTemplate {
    const char* windowClass;
    const char* text;
    int id;
    DWORD style;
    int x;  // dialog units, within the dialog
    int y;
    int width;
    int height;
};

struct DialogTemplate {
    int id;
    const char* caption;
    DWORD style;
    int x;  // dialog units
    int y;
    int width;
    int height;
    std::span<const ControlTemplate> controls;
};

struct DataResource {
    int id;
    const char* type;
    std::span<const unsigned char> bytes;
};

struct ResourceTable {
    std::span<const DialogTemplate> dialogs;
    std::span<const DataResource> data;
};

using EntryPoint = BOOL(WINAPI*)(HINSTANCE module, DWORD reason, LPVOID reserved);

// The module is the one that the entry point or the table lies in.
PLATFORM_API void RegisterEntryPoint(EntryPoint entryPoint) noexcept;
PLATFORM_API void UnregisterEntryPoint(EntryPoint entryPoint) noexcept;
PLATFORM_API void RegisterResources(const ResourceTable& table) noexcept;
PLATFORM_API void UnregisterResources(const ResourceTable& table) noexcept;

// Registered for as long as the module that holds this object is mapped.
class EntryPointRegistration {
  public:
    explicit EntryPointRegistration(EntryPoint entryPoint) noexcept : entryPoint_(entryPoint) {
        RegisterEntryPoint(entryPoint_);
    }
    ~EntryPointRegistration() { UnregisterEntryPoint(entryPoint_); }
    EntryPointRegistration(const EntryPointRegistration&) = delete;
    EntryPointRegistration& operator=(const EntryPointRegistration&) = delete;

  private:
    EntryPoint entryPoint_;
};

class ResourceRegistration {
  public:
    explicit ResourceRegistration(const ResourceTable& table) noexcept : table_(table) {
        RegisterResources(table_);
    }
    ~ResourceRegistration() { UnregisterResources(table_); }
    ResourceRegistration(const ResourceRegistration&) = delete;
    ResourceRegistration& operator=(const ResourceRegistration&) = delete;

  private:
    const ResourceTable& table_;
};

}  // namespace platform
