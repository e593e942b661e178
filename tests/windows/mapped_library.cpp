#include "tests/windows/mapped_library.h"

#include <algorithm>
#include <cctype>

MappedLibrary::MappedLibrary(const char* path)
    : module_(LoadLibraryExA(path, nullptr, DONT_RESOLVE_DLL_REFERENCES)) {}

MappedLibrary::~MappedLibrary() {
    FreeLibrary(module_);
}

template <class Type>
const Type* MappedLibrary::At(DWORD offset) const {
    return reinterpret_cast<const Type*>(reinterpret_cast<const char*>(module_) + offset);
}

template <class Type>
const Type* MappedLibrary::Directory(int index) const {
    const auto* const dos = At<IMAGE_DOS_HEADER>(0);
    const auto* const headers = At<IMAGE_NT_HEADERS64>(static_cast<DWORD>(dos->e_lfanew));
    const DWORD offset = headers->OptionalHeader.DataDirectory[index].VirtualAddress;
    return offset == 0 ? nullptr : At<Type>(offset);
}

std::map<int, std::string> MappedLibrary::Exports() const {
    std::map<int, std::string> found;
    const auto* const table = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    if (!table) return found;
    const auto* const routines = At<DWORD>(table->AddressOfFunctions);
    const auto first = static_cast<int>(table->Base);
    for (int place = 0; place < static_cast<int>(table->NumberOfFunctions); ++place)
        if (routines[place] != 0) found[first + place];
    const auto* const names = At<DWORD>(table->AddressOfNames);
    const auto* const places = At<WORD>(table->AddressOfNameOrdinals);
    for (DWORD at = 0; at < table->NumberOfNames; ++at)
        found[first + places[at]] = At<char>(names[at]);
    return found;
}

std::set<std::string> MappedLibrary::Imports() const {
    std::set<std::string> found;
    const auto* entry = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
    for (; entry && entry->Name != 0; ++entry) {
        std::string name = At<char>(entry->Name);
        std::ranges::transform(name, name.begin(),
                               [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        found.insert(name);
    }
    return found;
}
