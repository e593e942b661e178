#include "recorder/tape/mapped_file.h"

#include <algorithm>

#include "platform/narrow_path.h"
#include "platform/win32.h"
#include "platform/windows/last_error.h"

namespace recorder {
namespace {

HANDLE HandleOf(std::intptr_t file) {
    return reinterpret_cast<HANDLE>(file);
}

bool MoveEnd(HANDLE file, std::uint64_t size) {
    LARGE_INTEGER place{};
    place.QuadPart = static_cast<LONGLONG>(size);
    return SetFilePointerEx(file, place, nullptr, FILE_BEGIN) != 0 && SetEndOfFile(file) != 0;
}

DWORD High(std::uint64_t number) {
    return static_cast<DWORD>(number >> 32);
}

DWORD Low(std::uint64_t number) {
    return static_cast<DWORD>(number & 0xffff'ffff);
}

std::byte* MapBeginning(HANDLE file, std::size_t size) {
    HANDLE const map =
        CreateFileMappingW(file, nullptr, PAGE_READWRITE, High(size), Low(size), nullptr);
    if (map == nullptr) return nullptr;
    void* const memory = MapViewOfFile(map, FILE_MAP_WRITE, 0, 0, size);
    const DWORD reason = GetLastError();
    CloseHandle(map);  // the view holds it
    SetLastError(reason);
    return static_cast<std::byte*>(memory);
}

// Bytes that one call of the system's is to move.
DWORD AtOnce(std::size_t left) {
    constexpr std::size_t kMost = 1 << 20;
    return static_cast<DWORD>(std::min(left, kMost));
}

OVERLAPPED PlaceAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = Low(offset);
    place.OffsetHigh = High(offset);
    return place;
}

}  // namespace

// Whoever may not write beside us may read; nobody can take the file away.
std::unique_ptr<MappedFile> MappedFile::Open(const std::string& path, std::string& whyNot) {
    std::unique_ptr<MappedFile> opened(new MappedFile);
    HANDLE const file =
        CreateFileW(platform::FromNarrow(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                    FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        whyNot = GetLastError() == ERROR_SHARING_VIOLATION ? "somebody is recording to it"
                                                           : platform::WordsForLastError();
        return nullptr;
    }
    opened->file_ = reinterpret_cast<std::intptr_t>(file);
    if (GetFileType(file) == FILE_TYPE_DISK) return opened;
    whyNot = "it is no file";
    return nullptr;
}

MappedFile::~MappedFile() {
    Unmap();
    if (HandleOf(file_) != INVALID_HANDLE_VALUE) CloseHandle(HandleOf(file_));
}

std::uint64_t MappedFile::Size() const {
    LARGE_INTEGER size{};
    return GetFileSizeEx(HandleOf(file_), &size) != 0 ? static_cast<std::uint64_t>(size.QuadPart)
                                                      : 0;
}

std::size_t MappedFile::Read(std::uint64_t offset, std::span<std::byte> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED place = PlaceAt(offset + done);
        const DWORD wanted = AtOnce(bytes.size() - done);
        DWORD count = 0;
        if (ReadFile(HandleOf(file_), bytes.data() + done, wanted, &count, &place) == 0) break;
        if (count == 0) break;
        done += count;
    }
    return done;
}

// A file that is not sparse gets its room on the disk as it grows.
std::span<std::byte> MappedFile::Map(std::size_t size, std::string& whyNot) {
    HANDLE const file = HandleOf(file_);
    std::byte* const memory =
        Size() >= size || MoveEnd(file, size) ? MapBeginning(file, size) : nullptr;
    if (memory == nullptr) {
        whyNot = platform::WordsForLastError();
        return {};
    }
    mapped_ = {memory, size};
    return mapped_;
}

void MappedFile::Unmap() {
    if (!mapped_.empty()) UnmapViewOfFile(mapped_.data());
    mapped_ = {};
}

std::string MappedFile::Write(std::uint64_t offset, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceAt(offset);
        DWORD count = 0;
        if (WriteFile(HandleOf(file_), bytes.data(), AtOnce(bytes.size()), &count, &place) == 0)
            return platform::WordsForLastError();
        bytes = bytes.subspan(count);
        offset += count;
    }
    return {};
}

void MappedFile::BeginSync(std::uint64_t, std::uint64_t) {}

std::string MappedFile::Sync() {
    const bool isWritten = mapped_.empty() || FlushViewOfFile(mapped_.data(), 0) != 0;
    return isWritten && FlushFileBuffers(HandleOf(file_)) != 0 ? std::string()
                                                               : platform::WordsForLastError();
}

void MappedFile::Shrink(std::uint64_t size) {
    Unmap();
    if (size < Size()) MoveEnd(HandleOf(file_), size);
}

bool MappedFile::IsGone() const {
    return false;  // it cannot be taken away
}

}  // namespace recorder
