#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "recorder/stream/record.h"
#include "tvl/matrix4.h"
#include "tvl/mesh.h"
#include "tvl/xml_node.h"

namespace recorder {

// Reads the values of a record in their order. What is not there, or makes no sense, reads as
// nothing (0, empty), and so does all behind it: IsGood says whether that happened. A record that
// came out of AreValuesGood reads well to its end.
class ValueReader {
  public:
    explicit ValueReader(std::span<const std::uint64_t> values) : rest_(values) {}
    explicit ValueReader(const Record& record) : rest_(record.values) {}

    bool Truth() { return Word() != 0; }
    std::int32_t Whole() { return static_cast<std::int32_t>(Word()); }
    std::uint64_t Word();
    double Number() { return std::bit_cast<double>(Word()); }
    ObjectId Object() { return Word(); }
    std::string_view Text();  // lies in the record
    std::pair<double, double> Pair();
    std::array<double, 3> Vector();
    TVL::CMatrix4 Matrix();
    std::vector<ObjectId> Objects();
    XMLNode Tree();
    ObjectFacts Facts();
    char Letter() { return static_cast<char>(Word()); }  // of an extension's value, ahead of it
    TVL::CMesh MeshContent();                            // behind the mesh's id

    // Steps over a value of that letter (see operations.h) and gives its words.
    std::span<const std::uint64_t> Skip(char letter);

    bool IsGood() const { return isGood_; }
    bool IsAtEnd() const { return rest_.empty(); }

  private:
    std::span<const std::uint64_t> Take(std::size_t count);
    std::size_t Count(std::size_t wordsOfEach);
    std::size_t TreeSize();
    void Fail();

    std::span<const std::uint64_t> rest_;
    bool isGood_ = true;
};

// The letters of a record's values; empty for a mesh, whose content has none.
std::string_view LettersOf(const RecordHead& head);

// Milliseconds as a person reads them: "2.310".
std::string InSeconds(std::uint32_t milliseconds);

// Whether the head makes sense and the values are those that it names, to the last word.
bool AreValuesGood(const Record& record);

// The record that begins at the first word, if one is there whole: its size is within the words and
// its checksum right. A salt is what its checksum was combined with, by exclusive or.
std::optional<Record> ReadRecord(std::span<const std::uint64_t> words, std::uint32_t salt = 0);

}  // namespace recorder
