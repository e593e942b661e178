#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "host/types.h"

// What the plug-in's two keyframe controllers save, read without the plug-in. It is one chunk: the
// version, the bytes of a record and the number of keys, 4 bytes each, then a record for each key,
// times rising, and one for the cached key, which evaluation moves. A record is flags and time in
// ticks, 4 bytes each, and the value: a float, or the rows of a matrix as 12 floats and the host's
// matrix flags. Numbers are little-endian.
namespace headless {

inline constexpr Class_ID kMatrixKeyframesClassId{0x708B15A4, 0x2AFA7C85};
inline constexpr Class_ID kScalarKeyframesClassId{0x2ADE2E71, 0x21430FA0};

constexpr bool IsKeyframes(Class_ID id) {
    return id == kMatrixKeyframesClassId || id == kScalarKeyframesClassId;
}

// A view of such a chunk, good as long as the bytes are.
class KeyframeChunk {
  public:
    // Nothing if the bytes are anything but one whole chunk of that form.
    static std::optional<KeyframeChunk> In(std::span<const std::byte> saved);

    // Without the cached key, which stands behind the others.
    std::size_t Count() const { return count_; }
    TimeValue Time(std::size_t key) const;  // ticks
    std::span<const std::byte> Value(std::size_t key) const;
    std::span<const std::byte> Record(std::size_t key) const;
    bool IsMatrix() const { return recordBytes_ == kMatrixRecordBytes; }

  private:
    static constexpr std::size_t kMatrixRecordBytes = 60;
    static constexpr std::size_t kScalarRecordBytes = 12;

    KeyframeChunk(std::span<const std::byte> records, std::size_t recordBytes, std::size_t count)
        : records_(records), recordBytes_(recordBytes), count_(count) {}

    std::span<const std::byte> records_;  // of the keys and of the cached key
    std::size_t recordBytes_;
    std::size_t count_;
};

// Of what such a controller has saved that which neither evaluation nor loading moves: all but its
// cached key, or where that is the only one the value alone. All of what is no such chunk.
std::span<const std::byte> LastingPart(std::span<const std::byte> saved);

}  // namespace headless
