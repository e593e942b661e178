#pragma once

#include <cstdint>
#include <string_view>

#include "headless/scene_file/scene_document.h"
#include "headless/storage/byte_sink.h"
#include "headless/storage/chunk_format.h"
#include "headless/storage/chunk_writer.h"

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
    ChunkWriter writer_;
    std::uint64_t begin_;
};

}  // namespace headless
