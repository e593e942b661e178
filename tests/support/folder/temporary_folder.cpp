#include "tests/support/folder/temporary_folder.h"

#include <fstream>
#include <random>

#include "platform/narrow_path.h"
#include "platform/registry.h"
#include "platform/testing.h"

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("lumiset_" + std::to_string(random()));
    } while (!fs::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
    platform::RemoveFolder(path_);
}

std::string TemporaryFolder::File(std::string_view name) const {
    return platform::ToNarrow(path_ / platform::FromNarrow(std::string(name)));
}

// Some file systems wait for the disk where a file is emptied and written anew, hence a new one.
std::string TemporaryFolder::Write(std::string_view name, std::string_view bytes) const {
    const fs::path path = path_ / platform::FromNarrow(std::string(name));
    fs::remove(path);
    std::ofstream(path, std::ios::binary) << bytes;
    return File(name);
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

namespace {

// The file is UTF-8, whatever the code page is.
std::string Entry(std::string_view key, std::string_view name, std::string_view value) {
    if (value.empty()) return "";
    const std::u8string text = platform::FromNarrow(std::string(value)).u8string();
    const std::string bytes(text.begin(), text.end());
    std::ostringstream entry;
    entry << "\n[" << key << "]\n" << std::quoted(name) << '=' << std::quoted(bytes) << '\n';
    return entry.str();
}

}  // namespace

void PlaceRegistry(const TemporaryFolder& folder, const RegistryEntries& entries) {
    constexpr std::string_view kCore =
        "HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Tarvo Works\\Ostrel tools";
    constexpr std::string_view kFolders =
        "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    const std::string text = "Windows Registry Editor Version 5.00\n" +
                             Entry(kCore, "datapath", entries.coreFolder) +
                             Entry(kFolders, "Personal", entries.documents);
    platform::UseRegistryFile(folder.Write("test.reg", text));
}
