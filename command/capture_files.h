#pragma once

#include <string>
#include <vector>

namespace headless {

// The captures that a person has named: a file by itself; a folder, for the files in it, but not
// below it, that end in .bvh; or a pattern with * and ? in its last name, which not every shell
// fills in, for the files that fit. Those of a folder or a pattern are sorted, and the case of
// letters does not count there. What stands for no file is told beside the files; throws a Failure
// where there is no file at all.
struct CaptureFiles {
    struct Missing {
        std::string named;
        std::string why;
    };
    std::vector<std::string> files;
    std::vector<Missing> missing;
};
CaptureFiles FilesOfCaptures(const std::vector<std::string>& named);

}  // namespace headless
