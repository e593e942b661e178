#pragma once

#include <map>
#include <vector>

#include "platform/common/resources.h"
#include "platform/module/registration.h"

namespace platform {

// What is known of a module: what it registered while it was mapped, and how often LoadLibraryA
// gave it out. A record ends when neither is left.
struct ModuleRecord {
    EntryPoint entryPoint = nullptr;
    std::vector<Resource> resources;
    void* handle = nullptr;  // the dynamic loader's; owned `loads` times
    unsigned loads = 0;
};

// Keyed by the address at which the module is mapped. Records stay where they are until they end,
// which can happen in any call into a module.
std::map<HMODULE, ModuleRecord>& Modules();

ModuleRecord* FindModule(HMODULE module);
void EndModuleIfUnused(HMODULE module);

// The module that an address lies in, or that the dynamic loader's handle stands for.
HMODULE ModuleOfAddress(const void* address);
HMODULE ModuleOfHandle(void* handle);
HMODULE ProgramModule();

}  // namespace platform
