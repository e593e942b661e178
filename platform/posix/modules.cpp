#include "platform/posix/modules.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <system_error>

#include "platform/modules.h"
#include "platform/posix/guarded.h"

namespace platform {
namespace {

// Runs `change` on the record of the module that `address` lies in.
template <class Change>
void ChangeModule(const void* address, Change&& change) noexcept {
    const HMODULE module = ModuleOfAddress(address);
    Guarded(false, [&] {
        change(Modules()[module]);
        EndModuleIfUnused(module);
        return true;
    });
}

}  // namespace

// Never destroyed: modules that are still mapped when the program ends take back what they
// registered after everything else is gone.
std::map<HMODULE, ModuleRecord>& Modules() {
    static auto* const modules = new std::map<HMODULE, ModuleRecord>;
    return *modules;
}

ModuleRecord* FindModule(HMODULE module) {
    const auto found = Modules().find(module);
    return found == Modules().end() ? nullptr : &found->second;
}

void EndModuleIfUnused(HMODULE module) {
    const ModuleRecord* record = FindModule(module);
    if (record == nullptr || record->loads > 0) return;
    if (record->entryPoint == nullptr && record->resources.empty()) Modules().erase(module);
}

HMODULE ModuleOfAddress(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) return nullptr;
    return static_cast<HMODULE>(info.dli_fbase);
}

std::filesystem::path FileOfModule(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code error;
    return std::filesystem::absolute(info.dli_fname, error);
}

HMODULE ModuleOfHandle(void* handle) {
    link_map* map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0) return nullptr;
    return ModuleOfAddress(map->l_ld);
}

HMODULE ProgramModule() {
    static const HMODULE program = [] {
        void* const handle = dlopen(nullptr, RTLD_LAZY);
        const HMODULE module = ModuleOfHandle(handle);
        dlclose(handle);
        return module;
    }();
    return program;
}

void RegisterEntryPoint(EntryPoint entryPoint) noexcept {
    ChangeModule(reinterpret_cast<const void*>(entryPoint),
                 [&](ModuleRecord& record) { record.entryPoint = entryPoint; });
}

void UnregisterEntryPoint(EntryPoint entryPoint) noexcept {
    ChangeModule(reinterpret_cast<const void*>(entryPoint),
                 [](ModuleRecord& record) { record.entryPoint = nullptr; });
}

// They are read here, so that finding one later takes no memory.
void RegisterResources(ResourceFile file) noexcept {
    ChangeModule(file.data(), [&](ModuleRecord& record) {
        std::ranges::move(ReadResources(file), std::back_inserter(record.resources));
    });
}

void UnregisterResources(ResourceFile file) noexcept {
    const std::less_equal<> isUpTo;
    ChangeModule(file.data(), [&](ModuleRecord& record) {
        std::erase_if(record.resources, [&](const Resource& resource) {
            const std::byte* const at = resource.data.data();
            return isUpTo(file.data(), at) && isUpTo(at, file.data() + file.size());
        });
    });
}

}  // namespace platform
