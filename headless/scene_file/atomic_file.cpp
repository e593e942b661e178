#include "headless/scene_file/atomic_file.h"

#include <filesystem>
#include <random>
#include <system_error>

#include "headless/scene_file/scene_file.h"
#include "platform/files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw SceneFileError(NotWritten(path) + ": " + reason);
}

// Only files are replaced, and one that a link leads to where it stands.
std::string PlaceOf(const std::string& path) {
    std::error_code error;
    const fs::path named = platform::FromNarrow(path);
    const fs::file_status status = fs::status(named, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) Fail(path, "it is no plain file");
    if (platform::IsReadOnly(path)) Fail(path, platform::kReadOnly);
    if (!fs::exists(status) || !fs::is_symlink(fs::symlink_status(named, error))) return path;
    const fs::path place = fs::canonical(named, error);
    if (error) return path;
    std::string told = platform::ToNarrow(place);
    if (told.empty()) Fail(path, "it leads to a name of which the code page lacks a letter");
    return told;
}

std::string RandomName(std::random_device& random) {
    constexpr std::string_view kHexadecimal = "0123456789abcdef";
    std::string name(kSavingPrefix);
    for (std::size_t i = 0; i < kSavingDigits; ++i)
        name += kHexadecimal[random() % kHexadecimal.size()];
    return name.append(kSavingSuffix);
}

}  // namespace

std::string NotWritten(const std::string& path) {
    return path + ": the file cannot be written";
}

// Names that a process left behind when it was killed are passed over. Once the file is there,
// nothing here can fail.
AtomicFile::Written::Written(const std::string& place, const std::string& toldAs) {
    constexpr int kAttempts = 100;
    std::random_device random;
    std::string reason = "every name is taken";
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        file_ = platform::FromNarrow(place).replace_filename(RandomName(random));
        path_ = platform::ToNarrow(file_);
        const platform::NewFile made = platform::MakeNewFile(path_, reason);
        if (made == platform::NewFile::kMade) return;
        if (made == platform::NewFile::kRefused) break;
    }
    Fail(toldAs, reason);
}

AtomicFile::Written::~Written() {
    if (file_.empty()) return;
    std::error_code ignored;
    fs::remove(file_, ignored);
}

AtomicFile::AtomicFile(const std::string& path)
    : path_(path), place_(PlaceOf(path)), written_(place_, path), sink_(written_.Path()) {}

void AtomicFile::Close() {
    if (!sink_.Close()) FailToWrite();
}

// The new file is as open to others as the old one was.
std::string AtomicFile::TakePlace() {
    std::error_code error;
    const fs::file_status old = fs::status(platform::FromNarrow(place_), error);
    if (fs::exists(old))
        fs::permissions(platform::FromNarrow(WrittenPath()), old.permissions(), error);
    const std::string reason = platform::ReplaceFile(WrittenPath(), place_);
    if (!reason.empty()) Fail(path_, reason);
    written_.Forget();
    return place_;
}

void AtomicFile::FailToWrite() const {
    Fail(path_, sink_.Failure().empty() ? "the bytes do not come back" : sink_.Failure());
}

}  // namespace headless
