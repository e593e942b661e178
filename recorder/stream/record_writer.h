#pragma once

#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "recorder/stream/record.h"
#include "tvl/matrix4.h"
#include "tvl/mesh.h"
#include "tvl/xml_node.h"

namespace recorder {

// What an extension takes or gives, under the letter of its kind: a whole number of 64 bits (i), an
// object (o), a tree (t), or nothing (0).
struct ExtensionValue {
    char letter = 0;
    std::uint64_t word = 0;
    const XMLNode* tree = nullptr;
};

// Writes one record after another into memory that it keeps. Lack of memory is thrown.
class RecordWriter {
  public:
    // What was written is gone. A head's size and checksum are set at the end.
    void Begin(const RecordHead& head) {
        Begin(head.call, head.object,
              WordOf(head.milliseconds, head.kind, head.thread, head.nesting, head.operation));
    }
    void Begin(std::uint64_t call, ObjectId object, std::uint64_t lastWord) {
        at_ = words_.get();
        std::uint64_t* const head = Room(kHeadWords);
        head[1] = call;
        head[2] = object;
        head[3] = lastWord;
    }

    // A call, as a tape has it but for its number and its moment. It stands as End gives it.
    template <class... Values>
    Record Call(ObjectId object, Operation operation, const Values&... values) {
        Begin(0, object, WordOf(0, RecordKind::kCall, 0, 0, operation));
        (Put(values), ...);
        return End();
    }

    void Put(bool value) { Word(value ? 1 : 0); }
    void Put(std::int32_t value) { Word(static_cast<std::uint64_t>(std::int64_t{value})); }
    void Put(double value) { Word(std::bit_cast<std::uint64_t>(value)); }
    void Put(ObjectId value) { Word(value); }  // also a mesh's id and a window
    void Put(std::string_view text);
    void Put(const std::pair<double, double>& value);
    void Put(const std::array<double, 3>& value) { Words<3>(value.data()); }
    void Put(const TVL::CMatrix4& matrix) { Words<16>(matrix.rows); }
    void Put(const std::vector<ObjectId>& objects);
    void Put(const XMLNode& tree);
    void Put(const ObjectFacts& facts);

    void Put(const ExtensionValue& value);
    template <class Type>
    void Put(Type*) = delete;  // which would be a truth

    // The values of a mesh record: its id, and of vertices, texture vertices, faces and texture
    // faces the count of entries and then these, each index a word.
    void PutMeshContent(MeshId id, const TVL::CMesh& mesh);

    // The record, which stands until the next one begins.
    Record End();
    std::span<const std::byte> Bytes() const { return std::as_bytes(Written()); }

  private:
    // Where so many words go next.
    std::uint64_t* Room(std::size_t count) {
        if (static_cast<std::size_t>(end_ - at_) < count) Grow(count);
        std::uint64_t* const place = at_;
        at_ += count;
        return place;
    }
    void Grow(std::size_t count);

    void Word(std::uint64_t word) { *Room(1) = word; }
    template <std::size_t kCount>
    void Words(const void* numbers) {
        std::memcpy(Room(kCount), numbers, kCount * 8);
    }

    std::size_t Size() const { return static_cast<std::size_t>(at_ - words_.get()); }
    std::span<std::uint64_t> Written() const { return {words_.get(), Size()}; }

    std::unique_ptr<std::uint64_t[]> words_;
    std::uint64_t* at_ = nullptr;   // behind what is written
    std::uint64_t* end_ = nullptr;  // of the memory
};

MeshId IdOf(const TVL::CMesh& mesh);

// A step of all hashes here.
constexpr std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
    constexpr std::uint64_t kFactor = 0x9e37'79b9'7f4a'7c15;  // 2^64 over the golden ratio
    return std::rotl(hash ^ word, 29) * kFactor;
}

// Of a record's words, four or more, but for the place of the checksum itself, the higher half of
// the first one: four sums, of each fourth word, which do not wait for one another. A change of one
// word alone always changes the 64 bits of which these 32 are made.
std::uint32_t ChecksumOf(std::span<const std::uint64_t> words);

}  // namespace recorder
