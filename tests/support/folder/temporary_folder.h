#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// A new folder among the system's temporary ones. It goes with its object, with all that is in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder& operator=(TemporaryFolder&&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    // The path of a file in it, as narrow text like the name.
    std::string File(std::string_view name) const;

    // A file in place of the one that was there; its path.
    std::string Write(std::string_view name, std::string_view bytes) const;

  private:
    std::filesystem::path path_;
};

// All the bytes of a file; none if it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

// What the registry says; what is empty it does not know.
struct RegistryEntries {
    std::string_view coreFolder;  // where a Core is installed
    std::string_view documents;   // the user's folder of documents
};

// Lets this process and those that it starts find this in the registry, and nothing else. The file
// that it takes lies in the folder.
void PlaceRegistry(const TemporaryFolder& folder, const RegistryEntries& entries);
