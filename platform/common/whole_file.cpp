#include "platform/whole_file.h"

#include <random>
#include <system_error>

#include "platform/files.h"
#include "platform/narrow_path.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

// Behind the links that lead there. `refusal` says why nothing may stand there.
std::string PlaceBehind(const std::string& path, std::string& refusal) {
    std::error_code error;
    const fs::path named = FromNarrow(path);
    const fs::file_status status = fs::status(named, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) refusal = "it is no plain file";
    if (refusal.empty() && IsReadOnly(path)) refusal = kReadOnly;
    if (!fs::exists(status) || !fs::is_symlink(fs::symlink_status(named, error))) return path;
    const fs::path place = fs::canonical(named, error);
    if (error) return path;
    std::string told = ToNarrow(place);
    if (told.empty()) refusal = "it leads to a name of which the code page lacks a letter";
    return told;
}

std::string SavingName(std::random_device& random) {
    constexpr std::string_view kHexadecimal = "0123456789abcdef";
    std::string name(kSavingPrefix);
    for (std::size_t i = 0; i < kSavingDigits; ++i)
        name += kHexadecimal[random() % kHexadecimal.size()];
    return name.append(kSavingSuffix);
}

}  // namespace

WholeFile::WholeFile(const std::string& path) : place_(PlaceBehind(path, refusal_)) {
    if (refusal_.empty()) MakeIn(FromNarrow(place_).parent_path());
}

WholeFile::WholeFile(const InFolder& passing) {
    MakeIn(FromNarrow(passing.folder));
}

// Names that a process left behind when it was killed are passed over. Once the file is there,
// nothing here can fail.
void WholeFile::MakeIn(const fs::path& folder) {
    constexpr int kAttempts = 100;
    std::random_device random;
    refusal_ = "every name is taken";
    NewFile made = NewFile::kNameTaken;
    for (int attempt = 0; attempt < kAttempts && made == NewFile::kNameTaken; ++attempt) {
        file_ = folder / SavingName(random);
        path_ = ToNarrow(file_);
        made = MakeNewFile(path_, refusal_);
    }
    if (made == NewFile::kMade)
        refusal_.clear();
    else
        file_.clear();
}

WholeFile::~WholeFile() {
    if (file_.empty()) return;
    std::error_code ignored;
    fs::remove(file_, ignored);
}

std::string WholeFile::TakePlace() {
    std::error_code error;
    const fs::path place = FromNarrow(place_);
    const fs::file_status old = fs::status(place, error);
    if (fs::exists(old)) fs::permissions(file_, old.permissions(), error);
    std::string reason = ReplaceFile(path_, place_);
    if (reason.empty()) file_.clear();
    return reason;
}

}  // namespace platform
