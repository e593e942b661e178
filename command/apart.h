#pragma once

#include <string>
#include <vector>

namespace headless {

// A file as a person named it; the path is empty where none was named.
struct NamedFile {
    std::string option;
    std::string path;
};

// Refuses, before anything is done, to write two files in one place, or one in the place of a file
// that is to be kept.
void KeepApart(const std::vector<NamedFile>& kept, const std::vector<NamedFile>& written);

}  // namespace headless
