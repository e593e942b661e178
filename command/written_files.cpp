#include "command/written_files.h"

#include <filesystem>
#include <system_error>

#include "command/exit_status.h"
#include "platform/files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

void KeepApart(const NamedFile& file, const NamedFile& other) {
    if (file.path.empty() || other.path.empty()) return;
    if (platform::AreSameFile(file.path, other.path))
        throw Failure(file.option + ": " + file.path + " is the file of " + other.option + " too",
                      kWrongUsage);
}

std::string FolderForPassing() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) throw Failure("the folder for temporary files cannot be had: " + error.message());
    std::string path = platform::ToNarrow(folder);
    if (path.empty())
        throw Failure(platform::Shown(folder) +
                      ": the code page lacks a letter of the folder for temporary files");
    return path;
}

platform::WholeFile FileFor(const std::string& target) {
    if (target.empty())
        return platform::WholeFile(platform::WholeFile::InFolder{FolderForPassing()});
    return platform::WholeFile(target);
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

CoreFile::CoreFile(const std::string& target) : target_(target), file_(FileFor(target)) {
    if (file_.Refusal().empty()) return;
    const std::string name = target.empty() ? "the folder for temporary files" : target;
    // A place that was refused has a reason; else no file could be made beside it.
    throw Failure(name + ": " + (Path().empty() ? file_.Refusal() : "the file cannot be written"));
}

void CoreFile::Keep() {
    const std::string reason = file_.TakePlace();
    if (!reason.empty()) throw Failure(target_ + ": " + reason);
}

std::string CoreFile::Named(std::string text) const {
    const std::size_t place = text.find(Path());
    if (place != std::string::npos && !target_.empty()) text.replace(place, Path().size(), target_);
    return text;
}

}  // namespace headless
