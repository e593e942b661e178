#pragma once

#include <string>
#include <vector>

namespace headless {

// The captures that a person has named: a file by itself; a folder, for the files in it, but not
// below it, that end in .bvh; or a pattern with * and ? in its last name, which not every shell
// fills in, for the files that fit. Those of a folder or a pattern are sorted, and the case of
// letters does not count there. Throws a Failure where either stands for no file.
std::vector<std::string> FilesOfCaptures(const std::vector<std::string>& named);

}  // namespace headless
