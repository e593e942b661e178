#include <gtest/gtest.h>

// The libraries as the system's loader sees them: mapped, and without their code being run.
namespace {

// These routines and no others are exported, by ordinal from 1 on. What must be there for the
// library to be loaded, in lower case, is `others`, and otherwise on every Windows without anything
// having been installed. One of these has the C heap, on which either side frees what the other has
// made. Wine passes over in silence what is freed on another heap, so that nothing else would show
// it.
void ExpectLibrary(const char* path, const std::vector<const char*>& exports,
                   std::set<std::string> others) {
    SCOPED_TRACE(path);
    const std::unique_ptr<HINSTANCE__, decltype(&FreeLibrary)> module(
        LoadLibraryExA(path, nullptr, DONT_RESOLVE_DLL_REFERENCES), FreeLibrary);
    ASSERT_NE(module, nullptr);
    const char* const image = reinterpret_cast<const char*>(module.get());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto& tables = reinterpret_cast<const IMAGE_NT_HEADERS64*>(image + dos->e_lfanew)
                             ->OptionalHeader.DataDirectory;
    for (WORD i = 0; i < exports.size(); ++i) {
        const FARPROC routine = GetProcAddress(module.get(), exports[i]);
        EXPECT_TRUE(routine && routine == GetProcAddress(module.get(), MAKEINTRESOURCEA(i + 1)));
    }
    const DWORD exported = tables[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress;
    EXPECT_TRUE(
        exports.empty() ||
        reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(image + exported)->NumberOfFunctions ==
            exports.size());

    std::set<std::string> found;
    const auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(
        image + tables[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
    for (; entry->Name != 0; ++entry) {
        std::string name = image + entry->Name;
        for (char& letter : name)
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        found.insert(name);
    }
    others.insert("msvcrt.dll");
    for (const char* system : {"kernel32.dll", "user32.dll", "advapi32.dll", "comctl32.dll"})
        found.erase(system);
    EXPECT_EQ(found, others);
}

TEST(TheLibraries, ExportTheirRoutinesAndNeedTheSystemAndTheHostAlone) {
    ExpectLibrary(PLUGIN_MODULE,
                  {"LibDescription", "LibNumberClasses", "LibClassDesc", "LibVersion"},
                  {"headless_host.dll"});
    ExpectLibrary(CORE_MODULE, {"attach", "detach", "getVersion"}, {});
    ExpectLibrary(CORE_APART_MODULE, {}, {});
    ExpectLibrary(HOST_MODULE, {}, {});
}

}  // namespace
