#include "command/apart.h"

#include "command/exit_status.h"
#include "platform/files.h"

namespace headless {
namespace {

void KeepApart(const NamedFile& file, const NamedFile& other) {
    if (file.path.empty() || other.path.empty()) return;
    if (platform::AreSameFile(file.path, other.path))
        throw Failure(file.option + ": " + file.path + " is the file of " + other.option + " too",
                      kWrongUsage);
}

}  // namespace

void KeepApart(const std::vector<NamedFile>& kept, const std::vector<NamedFile>& written) {
    for (std::size_t at = 0; at < written.size(); ++at) {
        for (const NamedFile& file : kept)
            KeepApart(written[at], file);
        for (std::size_t before = 0; before < at; ++before)
            KeepApart(written[at], written[before]);
    }
}

}  // namespace headless
