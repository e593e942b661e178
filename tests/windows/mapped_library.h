#pragma once

#include <map>
#include <set>
#include <string>

#include "platform/win32.h"

// A library in memory whose code does not run, to be looked at with the system's own calls.
class MappedLibrary {
  public:
    explicit MappedLibrary(const char* path);
    ~MappedLibrary();
    MappedLibrary(const MappedLibrary&) = delete;
    MappedLibrary& operator=(const MappedLibrary&) = delete;

    HMODULE Module() const { return module_; }

    // Its routines by ordinal; one that has no name has an empty one.
    std::map<int, std::string> Exports() const;

    // The libraries that must be there for it to be loaded, in lower case.
    std::set<std::string> Imports() const;

  private:
    template <class Type>
    const Type* At(DWORD offset) const;

    // A table that the image's header tells of; null if it has none.
    template <class Type>
    const Type* Directory(int index) const;

    HMODULE module_;
};
