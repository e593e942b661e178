#include "headless/scene_file/atomic_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <new>
#include <span>
#include <string_view>
#include <system_error>

#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_file.h"
#include "headless/storage/byte_source.h"
#include "headless/storage/chunks.h"
#include "platform/files.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw SceneFileError(NotWritten(path) + ": " + reason);
}

const std::string& Written(const platform::WholeFile& file, const std::string& path) {
    if (!file.Refusal().empty()) Fail(path, file.Refusal());
    return file.Path();
}

namespace fs = std::filesystem;

constexpr std::chrono::hours kLongestSave{24};

bool IsNameWhileSaving(std::string_view name) {
    using platform::kSavingDigits, platform::kSavingPrefix, platform::kSavingSuffix;
    if (name.size() != kSavingPrefix.size() + kSavingDigits + kSavingSuffix.size()) return false;
    const std::string_view digits = name.substr(kSavingPrefix.size(), kSavingDigits);
    return name.starts_with(kSavingPrefix) && name.ends_with(kSavingSuffix) &&
           std::ranges::all_of(digits, [](unsigned char c) { return std::isxdigit(c) != 0; });
}

bool IsForgotten(const fs::path& path) {
    std::error_code error;
    const bool isFile = fs::is_regular_file(fs::symlink_status(path, error));
    if (error || !isFile) return false;
    const fs::file_time_type written = fs::last_write_time(path, error);
    return !error && fs::file_time_type::clock::now() - written > kLongestSave;
}

bool HasHeader(ByteSource& source) {
    std::array<std::byte, kSceneHeaderBytes> header;
    if (source.ReadAt(0, header) != header.size()) return false;
    const auto magic = std::as_bytes(std::span(kSceneMagic));
    return std::equal(magic.begin(), magic.end(), header.begin()) &&
           FromLittleEndian(&header[magic.size()], sizeof kSceneVersion) == kSceneVersion;
}

bool IsPicture(ByteSource& source) {
    constexpr std::string_view kPng = "\x89PNG";
    std::array<std::byte, kPng.size()> head;
    const auto png = std::as_bytes(std::span(kPng));
    return source.ReadAt(0, head) == head.size() && std::ranges::equal(head, png);
}

// Or a picture, which can be drawn again. What cannot be read, or is of another version, is not for
// this program to judge.
bool IsCut(const std::string& path) {
    FileSource source(path);
    if (!source.IsOpen()) return false;
    if (source.Size() == 0 || IsPicture(source)) return true;
    if (!HasHeader(source)) return false;
    if (source.Size() < kSceneHeaderBytes + kEndChunkBytes) return true;
    std::array<std::byte, kChunkHeaderBytes> head;
    if (source.ReadAt(source.Size() - kEndChunkBytes, head) != head.size()) return false;
    return FromLittleEndian(head.data(), kChunkIdBytes) != kEndChunk ||
           FromLittleEndian(&head[kChunkIdBytes], kChunkLengthBytes) !=
               kEndChunkBytes - kChunkHeaderBytes;
}

}  // namespace

std::string NotWritten(const std::string& path) {
    return path + ": the file cannot be written";
}

AtomicFile::AtomicFile(const std::string& path)
    : path_(path), file_(path), sink_(Written(file_, path)) {}

void AtomicFile::Close() {
    if (!sink_.Close()) FailToWrite();
    platform::StartFlush(WrittenPath());  // while it is checked
}

std::string AtomicFile::TakePlace() {
    const std::string reason = file_.TakePlace();
    if (!reason.empty()) Fail(path_, reason);
    return file_.Place();
}

void AtomicFile::FailToWrite() const {
    Fail(path_, sink_.Failure());
}

// The scene stands in its place by now, which no lack of memory here makes undone.
void SweepAbandonedSaves(const std::string& place) noexcept try {
    fs::path folder = platform::FromNarrow(place).parent_path();
    if (folder.empty()) folder = ".";
    for (const std::string& name : platform::NamesInFolder(platform::ToNarrow(folder))) {
        if (!IsNameWhileSaving(name)) continue;
        const fs::path path = folder / name;
        std::error_code ignored;
        if (IsForgotten(path) && IsCut(platform::ToNarrow(path))) fs::remove(path, ignored);
    }
} catch (const std::bad_alloc&) {
}

}  // namespace headless
