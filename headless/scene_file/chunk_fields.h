#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "headless/scene_file/file_errors.h"
#include "headless/scene_file/scene_document.h"
#include "headless/storage/byte_sink.h"
#include "headless/storage/byte_source.h"
#include "headless/storage/chunks.h"

namespace headless {

// One top-level chunk of a scene file, from its head to its checksum. Failures stay with the sink.
class TopChunk {
  public:
    TopChunk(FileSink& sink, std::uint16_t id);

    template <class T>
    void Number(T number) {
        Bytes(LittleEndian<sizeof(T)>(static_cast<std::uint64_t>(number)));
    }
    void Float(float number);
    void Text(std::string_view text);
    void Class(const StoredClass& type);
    void Bytes(std::span<const std::byte> bytes);

    // False: something could not be written.
    bool End();

  private:
    FileSink& sink_;
    std::uint64_t begin_;
};

// Reads the fields of one chunk, one behind the other. Whatever is not as it must be throws
// SceneFileError, naming the field and its byte.
class FieldReader {
  public:
    FieldReader(ByteSource& source, const std::string& path, StoredRange range)
        : source_(source),
          path_(path),
          field_(range.begin),
          position_(range.begin),
          end_(range.end) {}

    template <class T>
    T Number(const char* what) {
        static_assert(std::is_integral_v<T>);
        return static_cast<T>(Integer(sizeof(T), what));
    }
    float Float(const char* what);

    // A length in 4 bytes and as many bytes.
    std::string Text(const char* what);

    // A number in 4 bytes of items that take at least so many bytes each, all of them to come.
    std::uint32_t Count(std::size_t itemBytes, const char* what);

    // What is left of the chunk.
    StoredRange Rest() const { return {position_, end_}; }
    void ExpectEnd();

    // The field that was read last is not as it must be.
    [[noreturn]] void Fail(const std::string& what) const { FailAt(path_, field_, what); }
    void Require(bool holds, const char* what) const {
        if (!holds) Fail(what);
    }

  private:
    std::uint64_t Integer(std::size_t bytes, const char* what);
    void Read(void* bytes, std::size_t count, const char* what);

    ByteSource& source_;
    const std::string& path_;
    std::uint64_t field_;  // where the field that was read last begins
    std::uint64_t position_;
    std::uint64_t end_;
};

}  // namespace headless
