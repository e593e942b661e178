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

std::byte* MapPart(HANDLE file, std::uint64_t offset, std::size_t size) {
    const std::uint64_t end = offset + size;
    HANDLE const map =
        CreateFileMappingW(file, nullptr, PAGE_READWRITE, High(end), Low(end), nullptr);
    if (map == nullptr) return nullptr;
    void* const memory = MapViewOfFile(map, FILE_MAP_WRITE, High(offset), Low(offset), size);
    const DWORD reason = GetLastError();
    CloseHandle(map);  // the view holds it
    SetLastError(reason);
    return static_cast<std::byte*>(memory);
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
        OVERLAPPED place{};
        place.Offset = Low(offset + done);
        place.OffsetHigh = High(offset + done);
        constexpr std::size_t kMostAtOnce = 1 << 20;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kMostAtOnce));
        DWORD count = 0;
        if (ReadFile(HandleOf(file_), bytes.data() + done, wanted, &count, &place) == 0) break;
        if (count == 0) break;
        done += count;
    }
    return done;
}

// A file that is not sparse gets its room on the disk as it grows.
std::span<std::byte> MappedFile::Map(std::uint64_t offset, std::size_t size, std::string& whyNot) {
    Unmap();
    HANDLE const file = HandleOf(file_);
    std::byte* memory = nullptr;
    if (Size() >= offset + size || MoveEnd(file, offset + size))
        memory = MapPart(file, offset, size);
    if (memory == nullptr) {
        whyNot = platform::WordsForLastError();
        return {};
    }
    part_ = {memory, size};
    return part_;
}

// What a view has written is given to the file ahead of its end, so that Sync finds it there.
void MappedFile::Unmap() {
    if (part_.empty()) return;
    FlushViewOfFile(part_.data(), 0);
    UnmapViewOfFile(part_.data());
    part_ = {};
}

std::string MappedFile::Sync() {
    const bool isWritten = part_.empty() || FlushViewOfFile(part_.data(), 0) != 0;
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
