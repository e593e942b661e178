#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <set>
#include <string>

#include "platform/win32.h"

// The libraries as the system's loader sees them: mapped, and without their code being run.
namespace {

class MappedLibrary {
  public:
    explicit MappedLibrary(const char* path)
        : module_(LoadLibraryExA(path, nullptr, DONT_RESOLVE_DLL_REFERENCES), FreeLibrary) {}

    // These and no others, by ordinal from 1 on.
    void ExpectExports(const std::vector<const char*>& names) const {
        ASSERT_NE(module_, nullptr);
        for (WORD i = 0; i < names.size(); ++i)
            EXPECT_EQ(Routine(MAKEINTRESOURCEA(i + 1)), Routine(names[i])) << names[i];
        EXPECT_NE(Routine(names[0]), nullptr);
        EXPECT_EQ(At<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT)->NumberOfFunctions,
                  names.size());
    }

    // The libraries that must be there for it to be loaded, in lower case. But for `others` each
    // must be there on every Windows, without anything having been installed. One of them has the C
    // heap, on which either side frees what the other has made. Wine passes over in silence what is
    // freed on another heap, so that nothing else would show it.
    void ExpectImportsOfTheSystemAnd(const std::set<std::string>& others) const {
        std::set<std::string> found;
        const auto* entry = At<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
        for (; entry && entry->Name != 0; ++entry) {
            std::string name = Bytes(entry->Name);
            std::ranges::transform(name, name.begin(), [](unsigned char letter) {
                return static_cast<char>(std::tolower(letter));
            });
            found.insert(name);
        }
        EXPECT_EQ(found.erase("msvcrt.dll"), 1U);
        for (const char* system : {"kernel32.dll", "user32.dll", "advapi32.dll", "comctl32.dll"})
            found.erase(system);
        EXPECT_EQ(found, others);
    }

  private:
    FARPROC Routine(const char* name) const { return GetProcAddress(module_.get(), name); }

    const char* Bytes(DWORD offset) const {
        return reinterpret_cast<const char*>(module_.get()) + offset;
    }

    // A table that the image's header tells of; null if it has none.
    template <class Table>
    const Table* At(int index) const {
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(Bytes(0));
        const auto* const headers =
            reinterpret_cast<const IMAGE_NT_HEADERS64*>(Bytes(static_cast<DWORD>(dos->e_lfanew)));
        const DWORD offset = headers->OptionalHeader.DataDirectory[index].VirtualAddress;
        return offset == 0 ? nullptr : reinterpret_cast<const Table*>(Bytes(offset));
    }

    const std::unique_ptr<HINSTANCE__, decltype(&FreeLibrary)> module_;
};

TEST(TheLibraries, ExportTheirRoutinesAndNeedTheSystemAndTheHostAlone) {
    const MappedLibrary plugin(PLUGIN_MODULE);
    plugin.ExpectExports({"LibDescription", "LibNumberClasses", "LibClassDesc", "LibVersion"});
    plugin.ExpectImportsOfTheSystemAnd({"headless_host.dll"});
    const MappedLibrary core(CORE_MODULE);
    core.ExpectExports({"attach", "detach", "getVersion"});
    core.ExpectImportsOfTheSystemAnd({});
    MappedLibrary(CORE_APART_MODULE).ExpectImportsOfTheSystemAnd({});
    MappedLibrary(HOST_MODULE).ExpectImportsOfTheSystemAnd({});
}

}  // namespace
