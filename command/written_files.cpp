#include "command/written_files.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <istream>
#include <ostream>
#include <system_error>

#include "command/exit_status.h"
#include "platform/files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

struct BookedFile {
    std::string path;
    bool stoodBefore;
    bool isSaved;
};

std::vector<BookedFile>& Book() {
    static std::vector<BookedFile> book;
    return book;
}

std::vector<BookedFile>::iterator InBook(const std::string& file) {
    return std::ranges::find(Book(), file, &BookedFile::path);
}

void KeepApart(const NamedFile& file, const NamedFile& other) {
    if (file.path.empty() || other.path.empty()) return;
    if (platform::AreSameFile(file.path, other.path))
        Refuse(file.option + ": " + file.path + " is the file of " + other.option + " too");
}

platform::WholeFile FileFor(const std::string& target) {
    if (target.empty())
        return platform::WholeFile(platform::WholeFile::InFolder{FolderForPassing()});
    return platform::WholeFile(target);
}

bool isToldInAnyCase = false;

}  // namespace

void KeepApart(const std::vector<NamedFile>& kept, const std::vector<NamedFile>& written) {
    for (std::size_t at = 0; at < written.size(); ++at) {
        for (const NamedFile& file : kept)
            KeepApart(written[at], file);
        for (std::size_t before = 0; before < at; ++before)
            KeepApart(written[at], written[before]);
    }
}

std::size_t NeedEnding(const NamedFile& written, const std::vector<std::string>& endings) {
    std::string small = written.path;
    std::ranges::transform(small, small.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    std::string all;
    for (std::size_t at = 0; at < endings.size(); ++at) {
        if (small.ends_with(endings[at])) return at;
        all += (all.empty() ? "" : " or ") + endings[at];
    }
    Refuse(written.option + ": " + written.path + " does not end in " + all);
}

void KeepFromBooked(const NamedFile& written) {
    for (const BookedFile& file : Book())
        KeepApart(written, {"another option", file.path});
}

void ExpectFile(const std::string& file) {
    if (file.empty() || InBook(file) != Book().end()) return;
    std::error_code unknown;
    const bool stands = std::filesystem::exists(platform::FromNarrow(file), unknown);
    Book().push_back({file, stands, false});
}

void NoteSaved(const std::string& file) {
    ExpectFile(file);
    if (const auto booked = InBook(file); booked != Book().end()) booked->isSaved = true;
}

void TellSaved(std::ostream& out) {
    for (const BookedFile& file : Book())
        if (file.isSaved) out << "Saved as " << file.path << '\n';
}

void TellInAnyCase() {
    isToldInAnyCase = true;
}

void TellWhatStands(std::ostream& out) {
    if (Book().empty() && !isToldInAnyCase) return;
    const auto saved = std::ranges::count(Book(), true, &BookedFile::isSaved);
    if (saved > 0) {
        const auto isSaved = &BookedFile::isSaved;
        out << "; saved all the same: " << std::ranges::find(Book(), true, isSaved)->path;
        if (saved == 1) return;
        out << (saved == 2 ? ", " : " ... ")
            << std::ranges::find(Book().rbegin(), Book().rend(), true, isSaved)->path;
        if (saved > 2) out << " (" << saved << " files)";
        return;
    }
    out << "; nothing was saved";
    for (const BookedFile& file : Book())
        if (file.stoodBefore) out << ", " << file.path << " is as it was";
}

std::string FolderForPassing() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error)
        throw Failure(
            "the folder for temporary files, which the environment names (TMPDIR), cannot "
            "be had: " +
            error.message());
    std::string path = platform::ToNarrow(folder);
    if (path.empty())
        throw Failure(platform::Shown(folder) +
                      ": the code page lacks a letter of the folder for temporary files");
    return path;
}

std::string NewFolder(const std::string& parent, const std::string& name) {
    for (int number = 1;; ++number) {
        const std::filesystem::path folder =
            platform::FromNarrow(parent) / (name + '-' + std::to_string(number));
        std::error_code error;
        if (std::filesystem::create_directory(folder, error)) return platform::ToNarrow(folder);
        if (error) throw Failure(platform::Shown(folder) + ": " + error.message());
    }
}

PassingFolder::~PassingFolder() {
    std::error_code isInUse;
    std::filesystem::remove_all(platform::FromNarrow(path_), isInUse);
}

// Asked by itself the buffer would throw where it cannot be read.
std::optional<std::string> RestOf(std::istream& stream) {
    std::string text;
    std::array<char, 4096> block;
    while (stream.read(block.data(), block.size()), stream.gcount() > 0)
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    if (stream.bad()) return std::nullopt;
    return text;
}

std::string TextOfFile(const std::string& path) {
    const std::filesystem::path file = platform::FromNarrow(path);
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) throw Failure(path + ": it is a folder");
    std::ifstream stream(file, std::ios::binary);
    std::optional<std::string> text = RestOf(stream);
    if (stream.is_open() && text) return *std::move(text);
    const bool isThere = std::filesystem::exists(file, error);
    throw Failure(path + (isThere ? ": it cannot be read" : ": there is no such file"));
}

CoreFile::CoreFile(const std::string& target) : target_(target), file_(FileFor(target)) {
    ExpectFile(target);
    if (file_.Refusal().empty()) return;
    const std::string name = target.empty() ? "the folder for temporary files" : target;
    // A place that was refused has a reason; else no file could be made beside it.
    throw Failure(name + ": " + (Path().empty() ? file_.Refusal() : "the file cannot be written"));
}

void CoreFile::Keep() {
    const std::string reason = file_.TakePlace();
    if (!reason.empty()) throw Failure(target_ + ": " + reason);
    NoteSaved(target_);
}

std::string CoreFile::Named(std::string text) const {
    const std::size_t place = text.find(Path());
    if (place != std::string::npos && !target_.empty()) text.replace(place, Path().size(), target_);
    return text;
}

}  // namespace headless
