#include <dlfcn.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/modules.h"
#include "platform/posix/guarded.h"
#include "platform/posix/modules.h"
#include "platform/posix/native_path.h"
#include "platform/posix/window_table.h"
#include "platform/testing.h"
#include "platform/win32.h"

namespace platform {
namespace {

// Never destroyed, as the records of modules are not.
std::string& LoadFailure() {
    static auto* const failure = new std::string;
    return *failure;
}

HMODULE Fail(std::string reason) {
    LoadFailure() = std::move(reason);
    return nullptr;
}

std::string LastLoaderError() {
    const char* const error = dlerror();
    return error == nullptr ? "unknown error" : error;
}

bool RunEntryPoint(HMODULE module, DWORD reason) {
    const ModuleRecord* record = FindModule(module);
    if (record == nullptr || record->entryPoint == nullptr) return true;
    return Guarded(false, [&] { return record->entryPoint(module, reason, nullptr) != FALSE; });
}

// The entry point can load and free modules, this one included, so the record is looked up afresh
// after each step.
void Leave(HMODULE module) {
    RunEntryPoint(module, DLL_PROCESS_DETACH);
    ForgetProcedures(module);
}

bool Close(HMODULE module) {
    ModuleRecord* const record = FindModule(module);
    if (record == nullptr || record->loads == 0) return false;
    void* const handle = record->handle;
    if (--record->loads == 0) Leave(module);
    dlclose(handle);
    EndModuleIfUnused(module);
    return true;
}

HMODULE Load(std::string_view path) {
    const std::string native = NativeModulePath(path);
    // An empty name would stand for the program itself.
    if (native.empty()) return Fail("a module's path is empty");
    void* const handle = dlopen(native.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return Fail(LastLoaderError());

    const HMODULE module = ModuleOfHandle(handle);
    ModuleRecord& record = Modules()[module];
    record.handle = handle;
    if (++record.loads > 1 || RunEntryPoint(module, DLL_PROCESS_ATTACH)) return module;
    while (Close(module)) {
    }
    return Fail(native + ": the module's entry point refused to start");
}

FARPROC Find(HMODULE module, const char* name) {
    const ModuleRecord* const record = FindModule(module);
    if (record == nullptr || record->loads == 0) return nullptr;
    void* const symbol = dlsym(record->handle, name);
    // The dynamic loader goes on to look in the libraries that the module is linked to.
    if (symbol == nullptr || ModuleOfAddress(symbol) != module) return nullptr;
    return reinterpret_cast<FARPROC>(symbol);
}

}  // namespace

std::string FileToLoad(const std::string& path) {
    return NativeModulePath(path);
}

std::string LastLoadFailure() {
    return LoadFailure();
}

std::size_t CountLoadedModules() {
    std::size_t count = 0;
    for (const auto& [module, record] : Modules())
        count += record.loads > 0 ? 1 : 0;
    return count;
}

}  // namespace platform

extern "C" {

HMODULE LoadLibraryA(LPCSTR path) {
    if (path == nullptr) return nullptr;
    return platform::Guarded<HMODULE>(nullptr, [&] { return platform::Load(path); });
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    if (name == nullptr) return nullptr;
    return platform::Guarded<FARPROC>(nullptr, [&] { return platform::Find(module, name); });
}

BOOL FreeLibrary(HMODULE module) {
    return platform::Guarded<BOOL>(FALSE, [&] { return platform::Close(module) ? TRUE : FALSE; });
}

}  // extern "C"
