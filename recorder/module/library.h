#pragma once

#include <filesystem>
#include <string>

namespace recorder {

// A library that is loaded as long as this lives. It goes by the system alone, since the module
// stands beside hosts that have nothing else of ours.
class Library {
  public:
    // Empty if it is loaded; else why not, in one line.
    std::string Load(const std::filesystem::path& path);
    ~Library();
    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool IsLoaded() const { return handle_ != nullptr; }

    // Null if it exports none of that name.
    template <class Type>
    Type* Routine(const char* name) const {
        return reinterpret_cast<Type*>(Find(name));
    }

  private:
    using AnyRoutine = void (*)();
    AnyRoutine Find(const char* name) const;

    void* handle_ = nullptr;
};

// The file of the module or program in which something lies; empty if the system does not tell.
std::filesystem::path FileOf(const void* address);

}  // namespace recorder
