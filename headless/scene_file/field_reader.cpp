#include "headless/scene_file/field_reader.h"

#include <array>
#include <bit>

#include "headless/scene_file/scene_file.h"
#include "headless/storage/chunk_format.h"

namespace headless {

void FailAt(const std::string& path, std::uint64_t position, const std::string& what) {
    throw SceneFileError(path + ": at byte " + std::to_string(position) + ": " + what);
}

float FieldReader::Float(const char* what) {
    return std::bit_cast<float>(Number<std::uint32_t>(what));
}

std::string FieldReader::Text(const char* what) {
    const std::uint32_t length = Count(1, what);
    std::string text(length, '\0');
    Read(text.data(), length, what);
    return text;
}

std::uint32_t FieldReader::Count(std::size_t itemBytes, const char* what) {
    const auto count = Number<std::uint32_t>(what);
    const std::uint64_t left = end_ - position_;
    if (count > left / itemBytes) Fail(std::string(what) + " reaches beyond its chunk");
    return count;
}

void FieldReader::ExpectEnd() {
    field_ = position_;
    if (position_ != end_) Fail("there are bytes behind the last field of a chunk");
}

std::uint64_t FieldReader::Integer(std::size_t bytes, const char* what) {
    std::array<std::byte, sizeof(std::uint64_t)> stored{};
    field_ = position_;
    Read(stored.data(), bytes, what);
    return FromLittleEndian(stored.data(), bytes);
}

void FieldReader::Read(void* bytes, std::size_t count, const char* what) {
    if (count > end_ - position_) Fail(std::string(what) + " reaches beyond its chunk");
    if (source_.ReadAt(position_, {static_cast<std::byte*>(bytes), count}) != count)
        Fail("the file cannot be read");
    position_ += count;
}

}  // namespace headless
