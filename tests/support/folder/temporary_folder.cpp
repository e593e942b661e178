#include "tests/support/folder/temporary_folder.h"

#include <fstream>
#include <iterator>
#include <random>

#include "platform/narrow_path.h"
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
