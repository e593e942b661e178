#include "platform/common/resources.h"

#include <span>
#include <string>

#include "platform/common/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/modules.h"
#include "platform/win32.h"

namespace platform {
namespace {

std::span<const Resource> ResourcesOf(HMODULE module) {
    const ModuleRecord* const record = FindModule(module == nullptr ? ProgramModule() : module);
    if (record == nullptr) return {};
    return record->resources;
}

// A resource's number stands in the pointer itself, or in the text after a '#'.
std::string NameOrNumber(LPCSTR name) {
    constexpr std::uintptr_t largestNumber = 0xFFFF;
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    return value <= largestNumber ? '#' + std::to_string(value) : name;
}

// A resource is known by the address of its bytes, also once it is loaded.
template <class Handle>
Handle HandleOf(const Resource& resource) {
    return reinterpret_cast<Handle>(reinterpret_cast<std::uintptr_t>(resource.data.data()));
}

HRSRC FindResourceOf(HMODULE module, LPCSTR name, LPCSTR type) {
    for (const Resource& resource : ResourcesOf(module)) {
        if (EqualWithoutCase(resource.name, NameOrNumber(name)) &&
            EqualWithoutCase(resource.type, NameOrNumber(type)))
            return HandleOf<HRSRC>(resource);
    }
    return nullptr;
}

// Runs `body` on what is behind the handle, if it is one of this module's.
template <class Result, class Body>
Result WithResource(HMODULE module, HRSRC handle, Result failure, Body&& body) {
    return Guarded(failure, [&] {
        for (const Resource& resource : ResourcesOf(module))
            if (HandleOf<HRSRC>(resource) == handle) return body(resource);
        return failure;
    });
}

}  // namespace
}  // namespace platform

extern "C" {

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    return platform::Guarded<HRSRC>(nullptr,
                                    [&] { return platform::FindResourceOf(module, name, type); });
}

DWORD SizeofResource(HMODULE module, HRSRC handle) {
    return platform::WithResource(module, handle, DWORD{0}, [](const platform::Resource& found) {
        return static_cast<DWORD>(found.data.size());
    });
}

HGLOBAL LoadResource(HMODULE module, HRSRC handle) {
    return platform::WithResource(module, handle, HGLOBAL{}, &platform::HandleOf<HGLOBAL>);
}

LPVOID LockResource(HGLOBAL data) {
    return data;
}

}  // extern "C"
