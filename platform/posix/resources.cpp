#include "platform/posix/resources.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "platform/formats/text.h"
#include "platform/posix/guarded.h"
#include "platform/posix/modules.h"

namespace platform {
namespace {

std::span<const ResourceTable* const> TablesOf(HMODULE module) {
    const ModuleRecord* const record = FindModule(module == nullptr ? ProgramModule() : module);
    if (record == nullptr) return {};
    return record->resources;
}

// A resource's number stands in the pointer itself, or in the text after a '#'.
std::optional<int> ResourceNumber(LPCSTR name) {
    constexpr std::uintptr_t largestNumber = 0xFFFF;
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    if (value <= largestNumber) return static_cast<int>(value);
    const std::string_view text = name;
    if (!text.starts_with('#')) return std::nullopt;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return number;
}

const DataResource* FindData(HMODULE module, LPCSTR name, LPCSTR type) {
    const std::optional<int> id = ResourceNumber(name);
    // Types that have a number are the system's own, and none of those is kept as data.
    if (!id || ResourceNumber(type)) return nullptr;
    for (const ResourceTable* table : TablesOf(module)) {
        for (const DataResource& resource : table->data) {
            if (resource.id == *id && EqualWithoutCase(resource.type, type)) return &resource;
        }
    }
    return nullptr;
}

// The record behind the handle, if it is one of this module's.
const DataResource* ResourceOf(HMODULE module, HRSRC handle) {
    for (const ResourceTable* table : TablesOf(module)) {
        for (const DataResource& resource : table->data) {
            if (reinterpret_cast<std::uintptr_t>(&resource) ==
                reinterpret_cast<std::uintptr_t>(handle)) {
                return &resource;
            }
        }
    }
    return nullptr;
}

}  // namespace

const DialogTemplate* FindDialog(HMODULE module, LPCSTR name) {
    const std::optional<int> id = ResourceNumber(name);
    if (!id) return nullptr;
    for (const ResourceTable* table : TablesOf(module)) {
        for (const DialogTemplate& dialog : table->dialogs) {
            if (dialog.id == *id) return &dialog;
        }
    }
    return nullptr;
}

}  // namespace platform

extern "C" {

HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type) {
    return platform::Guarded<HRSRC>(nullptr, [&] {
        const auto* const resource = platform::FindData(module, name, type);
        return reinterpret_cast<HRSRC>(reinterpret_cast<std::uintptr_t>(resource));
    });
}

DWORD SizeofResource(HMODULE module, HRSRC handle) {
    return platform::Guarded<DWORD>(0, [&] {
        const auto* const resource = platform::ResourceOf(module, handle);
        return resource == nullptr ? DWORD{0} : static_cast<DWORD>(resource->bytes.size());
    });
}

// What is loaded is known by its address, as it is for the system.
HGLOBAL LoadResource(HMODULE module, HRSRC handle) {
    return platform::Guarded<HGLOBAL>(nullptr, [&] {
        const auto* const resource = platform::ResourceOf(module, handle);
        if (resource == nullptr) return HGLOBAL{};
        return reinterpret_cast<HGLOBAL>(reinterpret_cast<std::uintptr_t>(resource->bytes.data()));
    });
}

LPVOID LockResource(HGLOBAL data) {
    return data;
}

}  // extern "C"
